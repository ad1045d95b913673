# frozen_string_literal: true

# Answers the cases of tests/bindings/check.py with this binding.

require_relative '../lib/corvale'

DECODE = {
  'i' => method(:Integer),
  'l' => method(:Integer),
  'r' => ->(bits) { [bits].pack('H*').unpack1('G') },
  'c' => ->(code) { Integer(code).chr },
  'x' => ->(text) { [text].pack('H*').force_encoding('UTF-8') },
  'n' => ->(_) {}
}.freeze

def decoded(token)
  elements = token.split(',').map { |element| DECODE.fetch(element[0]).call(element[1..]) }
  elements.size == 1 ? elements.first : elements
end

def encoded(value)
  case value
  when Array then value.map { |element| encoded(element) }.join(' ')
  when Float then "r#{[value].pack('G').unpack1('H*')}"
  when String then "x#{value.unpack1('H*')}"
  else value.to_s
  end
end

# What a call of the C function gives.
def outcome(corvale, name, given)
  case name
  when 'CorvaleInit' then corvale.init
  when 'CorvaleGetInfo' then corvale.info
  when 'GetInitDllNames' then corvale.init_dll_names
  when 'OpenLogFile' then corvale.open_log_file(*given)
  when 'CloseLogFile' then corvale.close_log_file
  when 'LogMessage' then corvale.log_message(*given)
  when 'GetLastErrMsg' then corvale.last_err_msg
  when 'GetLastInfoMsg' then corvale.last_info_msg
  when 'GetDupKeyMode' then corvale.dup_key_mode
  when 'SetDupKeyMode' then corvale.send(:dup_key_mode=, *given)
  when 'GetAllKeyMode' then corvale.all_key_mode
  when 'SetAllKeyMode' then corvale.send(:all_key_mode=, *given)
  when 'ResetAllKeyMode' then corvale.reset_all_key_mode
  when 'GetElsetKeyMode' then corvale.elset_key_mode
  when 'SetElsetKeyMode' then corvale.send(:elset_key_mode=, *given)
  when 'CorvaleLoadFile' then corvale.load_file(*given)
  when 'GetMOICData' then corvale.moic_data(*given)
  when 'TestInterface' then corvale.test_interface(Corvale::Values.new(*given)).to_a
  when 'TestInterface2' then corvale.test_interface2(Corvale::Values.new(*given)).to_a
  when 'TestInterface3' then corvale.test_interface3(*given)
  end
end

corvale = nil
$stdin.each_line do |line|
  name, *tokens = line.split
  given = tokens.map { |token| decoded(token) }
  if name == 'Open'
    corvale = Corvale::Library.new(*given)
    puts 'ok'
  else
    puts "ok #{encoded(outcome(corvale, name, given))}"
  end
rescue Corvale::Error => e
  puts "failed #{encoded(e.message)}"
rescue ArgumentError
  puts 'refused'
rescue Fiddle::DLError => e
  puts "unloaded #{encoded(e.message)}"
end
