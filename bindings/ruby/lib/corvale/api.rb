# frozen_string_literal: true

require 'fiddle'

module Corvale
  # The 20 functions as the library sees them, and the calls to them. Internal to the binding.
  class Api
    # Result, then each argument: name, type, how many elements the library reads or writes (a number
    # or the name of an argument), way. A single element that goes in is passed by value, all else by
    # address.
    DECLARATIONS = {
      CorvaleInit: ['int32'],
      CorvaleGetInfo: ['void', %w[info text 128 out]],
      GetInitDllNames: ['void', %w[names text 512 out]],
      OpenLogFile: ['int32', %w[fileName text 512 in]],
      CloseLogFile: ['void'],
      LogMessage: ['void', %w[message text 128 in]],
      GetLastErrMsg: ['void', %w[message text 128 out]],
      GetLastInfoMsg: ['void', %w[message text 128 out]],
      GetDupKeyMode: ['int32'],
      SetDupKeyMode: ['int32', %w[mode int32 1 in]],
      GetAllKeyMode: ['int32'],
      SetAllKeyMode: ['int32', %w[mode int32 1 in]],
      ResetAllKeyMode: ['void'],
      GetElsetKeyMode: ['int32'],
      SetElsetKeyMode: ['int32', %w[mode int32 1 in]],
      CorvaleLoadFile: ['int32', %w[fileName text 512 in]],
      GetMOICData: ['void', %w[count int32 1 in], %w[values real64 count out]],
      TestInterface: ['void',
                      %w[cIn char 1 in], %w[cOut char 1 out],
                      %w[iIn int32 1 in], %w[iOut int32 1 out],
                      %w[lIn int64 1 in], %w[lOut int64 1 out],
                      %w[dIn real64 1 in], %w[dOut real64 1 out],
                      %w[strIn text 512 in], %w[strOut text 512 out],
                      %w[i3In int32 3 in], %w[i3Out int32 3 out],
                      %w[l3In int64 3 in], %w[l3Out int64 3 out],
                      %w[d3In real64 3 in], %w[d3Out real64 3 out],
                      %w[i6In int32 6 in], %w[i6Out int32 6 out],
                      %w[l6In int64 6 in], %w[l6Out int64 6 out],
                      %w[d6In real64 6 in], %w[d6Out real64 6 out]],
      TestInterface2: ['void',
                       %w[ch char 1 inout], %w[i int32 1 inout],
                       %w[l int64 1 inout], %w[d real64 1 inout],
                       %w[str text 512 inout],
                       %w[i3 int32 3 inout], %w[l3 int64 3 inout], %w[d3 real64 3 inout],
                       %w[i6 int32 6 inout], %w[l6 int64 6 inout], %w[d6 real64 6 inout]],
      TestInterface3: ['void',
                       %w[i3In int32 3 in], %w[i3Out int32 3 out],
                       %w[i6In int32 6 in], %w[i6Out int32 6 out]]
    }.freeze

    # Of each type: how it is passed by value, its letter in Array#pack, its bytes, the values that fit.
    Type = Struct.new(:by_value, :letter, :size, :values)
    TYPES = {
      'char' => Type.new(Fiddle::TYPE_CHAR, 'C', 1, ->(value) { value in Integer and (0..255).cover?(value) }),
      'text' => Type.new(nil, 'C', 1, ->(value) { (32..126).cover?(value) }),
      'int32' => Type.new(Fiddle::TYPE_INT, 'l', 4, ->(value) { value in Integer and value.bit_length < 32 }),
      'int64' => Type.new(Fiddle::TYPE_LONG_LONG, 'q', 8, ->(value) { value in Integer and value.bit_length < 64 }),
      'real64' => Type.new(Fiddle::TYPE_DOUBLE, 'd', 8, ->(value) { value in Float | Integer })
    }.freeze
    RESULTS = { 'void' => Fiddle::TYPE_VOID, 'int32' => Fiddle::TYPE_INT }.freeze

    # One argument of a declaration.
    Argument = Struct.new(:name, :type, :width, :way) do
      def by_value? = way == 'in' && width == '1' && type != 'text'
      def out? = way != 'in'
      def kind = TYPES.fetch(type)
      def passed_as = by_value? ? kind.by_value : Fiddle::TYPE_VOIDP

      # The value alone, or memory of exactly its width that holds it: all zero if it only goes out.
      def passed(value, elements)
        return checked([value], 1).first if by_value?

        bytes = elements * kind.size
        memory = Fiddle::Pointer.malloc([bytes, 1].max, Fiddle::RUBY_FREE)
        memory[0, bytes] = way == 'out' ? "\0" * bytes : checked(value, elements).pack("#{kind.letter}*")
        memory
      end

      # What a call left in its memory: an array, or the value alone of a width of 1.
      def read(memory, elements)
        values = memory[0, elements * kind.size].unpack("#{kind.letter}*")
        width == '1' ? values.first : values
      end

      private

      def checked(value, elements)
        values = width == '1' && !value.is_a?(Array) ? [value] : value
        raise ArgumentError, "#{name}: not an array of #{elements}" unless values in Array and values.size == elements

        values.each do |element|
          raise ArgumentError, "#{name}: #{element.inspect} is no #{type}" unless kind.values.call(element)
        end
      end
    end

    # Loads the library with local scope, to the end of the process, and finds all of its functions.
    def initialize(path)
      library = Fiddle::Handle.new(path, Fiddle::RTLD_NOW)
      @functions = DECLARATIONS.to_h do |name, (result, *declared)|
        arguments = declared.map { |row| Argument.new(*row) }
        function = Fiddle::Function.new(library[name.to_s], arguments.map(&:passed_as), RESULTS.fetch(result))
        [name, [function, arguments]]
      end
    end

    # Calls a function with what goes in; gives its result and all that comes out, in their order.
    def call(name, *given)
      function, arguments = @functions.fetch(name)
      ins = arguments.reject { |argument| argument.way == 'out' }.zip(given).to_h
      sizes = arguments.map { |argument| Integer(argument.width, exception: false) || given.first }
      passed = arguments.zip(sizes).map { |argument, elements| argument.passed(ins[argument], elements) }
      result = function.call(*passed)
      outs = arguments.zip(passed, sizes).select { |argument,| argument.out? }
      [result, *outs.map { |argument, memory, elements| argument.read(memory, elements) }]
    end
  end
end
