# frozen_string_literal: true

require 'monitor'
require_relative 'corvale/api'

# The C API of libCorvale: messages and log, key modes, input-file cards, interface self-tests.
#
#     corvale = Corvale::Library.new
#     corvale.load_file('orbit.inp')
#     values = corvale.moic_data(128)
#
# The library has one state for the whole process, whichever object is used. Every method may be called
# by any number of threads: one lock puts their calls in a row. Code that reaches the same library by
# another way is not held back by that.
module Corvale
  # The library returned status 2; the message is its own.
  class Error < StandardError; end

  # One of every kind of argument, for the interface tests: a character, integers of 32 and 64 bits, a
  # real, a text of at most 512 characters, then arrays of three and of six.
  Values = Struct.new(:ch, :i, :l, :d, :text, :i3, :l3, :d3, :i6, :l6, :d6)

  # The loaded library. What it would take otherwise than given raises ArgumentError before the call.
  class Library
    NAME_WIDTH = 512
    MESSAGE_WIDTH = 128
    ONE_AT_A_TIME = Monitor.new
    private_constant :NAME_WIDTH, :MESSAGE_WIDTH, :ONE_AT_A_TIME

    # Loads a library by its path, or by its name from where the system looks, with local scope, to the
    # end of the process. Without one it is what CORVALE_LIBRARY names, or else libCorvale.so.9. Raises
    # Fiddle::DLError with the loader's reason.
    def initialize(path = ENV.fetch('CORVALE_LIBRARY', 'libCorvale.so.9'))
      @api = Api.new(path)
    end

    # CorvaleInit. Does nothing: the library is ready once it is loaded.
    def init = succeed(:CorvaleInit)

    # CorvaleGetInfo. Name, version, build date, platform and compiler.
    def info = read(:CorvaleGetInfo)

    # GetInitDllNames. The libraries that have to be initialised first: none.
    def init_dll_names = read(:GetInitDllNames)

    # OpenLogFile. Opens the log, created or emptied; every message is from then on also a line of it.
    def open_log_file(name) = succeed(:OpenLogFile, filled_unindented(name, NAME_WIDTH))

    # CloseLogFile. Closes the log, if one is open, and blanks the last error message.
    def close_log_file = call(:CloseLogFile)

    # LogMessage. Stores a message of at most 128 characters and writes it to an open log.
    def log_message(message) = call(:LogMessage, filled_unindented(message, MESSAGE_WIDTH))

    # GetLastErrMsg. The last error message; it stays until the next error or close_log_file.
    def last_err_msg = read(:GetLastErrMsg)

    # GetLastInfoMsg. The last informational message.
    def last_info_msg = read(:GetLastInfoMsg)

    # GetDupKeyMode. The duplication key mode, 0 or 1.
    def dup_key_mode = call(:GetDupKeyMode)

    # SetDupKeyMode. A mode other than 0 and 1 raises and changes nothing.
    def dup_key_mode=(mode)
      succeed(:SetDupKeyMode, mode)
    end

    # GetAllKeyMode. The all-key mode, 0 or 1.
    def all_key_mode = call(:GetAllKeyMode)

    # SetAllKeyMode. A mode other than 0 and 1 raises and changes nothing.
    def all_key_mode=(mode)
      succeed(:SetAllKeyMode, mode)
    end

    # ResetAllKeyMode. Sets the all-key and the duplication key mode back to 0.
    def reset_all_key_mode = call(:ResetAllKeyMode)

    # GetElsetKeyMode. The element-set key mode, 0 or 1.
    def elset_key_mode = call(:GetElsetKeyMode)

    # SetElsetKeyMode. A mode other than 0 and 1 raises and changes nothing.
    def elset_key_mode=(mode)
      succeed(:SetElsetKeyMode, mode)
    end

    # CorvaleLoadFile. Reads the cards of a file. Raises if it cannot be opened, never for what it holds.
    def load_file(name) = succeed(:CorvaleLoadFile, filled_unindented(name, NAME_WIDTH))

    # GetMOICData. The first values of the array that QZ_MOIC cards fill; for more than 128 the library
    # gives zeros.
    def moic_data(count)
      raise ArgumentError, "count: #{count.inspect} is no number of values" unless count in (0..)

      synchronize { @api.call(:GetMOICData, count).last }
    end

    # TestInterface. Every value as it arrived in the library.
    def test_interface(values)
      _, *outs = @api.call(:TestInterface, *packed(values))
      unpacked(outs)
    end

    # TestInterface2. The same values, each changed by a fixed amount; integers wrap.
    def test_interface2(values)
      _, *outs = @api.call(:TestInterface2, *packed(values))
      unpacked(outs)
    end

    # TestInterface3. 4 times i3 and 5 times i6; products wrap.
    def test_interface3(i3, i6)
      @api.call(:TestInterface3, i3, i6).drop(1)
    end

    private

    def synchronize(&call) = ONE_AT_A_TIME.synchronize(&call)

    def call(name, *given) = synchronize { @api.call(name, *given).first }

    def read(name) = trimmed(synchronize { @api.call(name).last })

    # A call with a status; the reason is read before another thread can fail.
    def succeed(name, *given)
      synchronize { raise Error, last_err_msg unless call(name, *given).zero? }
    end

    # The bytes of a text in a buffer; refused when the library would not see all of it.
    def filled(text, width)
      bytes = String(text).bytes
      wrong = bytes.find { |byte| !(32..126).cover?(byte) }
      raise ArgumentError, "#{text.inspect}: byte #{wrong} is not printable ASCII" if wrong
      raise ArgumentError, "#{text.inspect}: #{bytes.size} bytes, #{width} fit" if bytes.size > width

      bytes + [' '.ord] * (width - bytes.size)
    end

    # A name or message; also refused when it begins with a blank, which the library drops.
    def filled_unindented(text, width)
      raise ArgumentError, "#{text.inspect}: begins with a blank" if String(text).b.start_with?(' ')

      filled(text, width)
    end

    # What a buffer holds, without the blanks that fill it; bytes are Latin-1.
    def trimmed(bytes) = bytes.pack('C*').force_encoding('ISO-8859-1').encode('UTF-8').gsub(/ +\z/, '')

    def packed(values)
      ch, i, l, d, text, *arrays = values.to_a
      raise ArgumentError, "ch: #{ch.inspect} is not one byte" unless String(ch).bytesize == 1

      [ch.ord, i, l, d, filled(text, NAME_WIDTH), *arrays]
    end

    def unpacked(outs)
      ch, i, l, d, text, *arrays = outs
      Values.new(ch.chr, i, l, d, trimmed(text), *arrays)
    end
  end
end
