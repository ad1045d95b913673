# frozen_string_literal: true

# Walks the table of the C API and proves that this binding declares and calls all of it.

require 'tmpdir'
require_relative '../lib/corvale'

# Remembers every function that is called in the library.
CALLED = {}
Corvale::Api.prepend(Module.new do
  def call(name, *given) = super.tap { CALLED[name.to_s] = true }
end)
LIBRARY = Corvale::Library.new

def expect(got, wanted)
  raise "got #{got.inspect}, wanted #{wanted.inspect}" unless got.eql?(wanted)
end

def fails(error, message = nil)
  yield
rescue error => e
  expect(e.class, error)
  expect(e.message, message) if message
else
  raise "no #{error}"
end

def table = File.readlines(ENV.fetch('CORVALE_INTERFACE'), chomp: true).grep_v(/\A(#.*)?\z/)

def declared
  Corvale::Api::DECLARATIONS.flat_map do |name, (result, *arguments)|
    ["function #{name} #{result}", *arguments.map { |row| "argument #{row.join(' ')}" }]
  end
end

def identity
  LIBRARY.init
  expect(LIBRARY.info[0, 41], 'Arvenit Corvale - Version: v9.4 - Build: ')
  expect(LIBRARY.init_dll_names, '')
end

def modes = [LIBRARY.dup_key_mode, LIBRARY.all_key_mode, LIBRARY.elset_key_mode]

def key_modes
  LIBRARY.dup_key_mode = LIBRARY.all_key_mode = 1
  expect(modes, [1, 1, 0])
  LIBRARY.elset_key_mode = 1
  LIBRARY.reset_all_key_mode
  expect(modes, [0, 0, 1])
  LIBRARY.elset_key_mode = 0
  reason = 'SetDupKeyMode: invalid input value for DUPLICATION key mode.'
  fails(Corvale::Error, reason) { LIBRARY.dup_key_mode = 2 }
  expect(LIBRARY.last_err_msg, reason)
end

def log(folder)
  reason = 'FileOpen: Unable to open file "no such file" for reading.'
  LIBRARY.open_log_file("#{folder}/log")
  LIBRARY.log_message('pass 1 of 3')
  fails(Corvale::Error, reason) { LIBRARY.load_file('no such file') }
  LIBRARY.close_log_file
  expect([LIBRARY.last_info_msg, LIBRARY.last_err_msg], ['pass 1 of 3', ''])
  expect(File.read("#{folder}/log"), format("%-128s\nError-%s\n", 'pass 1 of 3', reason))
  fails(Corvale::Error, 'OpenLogFile: log file failed to open.') { LIBRARY.open_log_file(folder) }
  LIBRARY.close_log_file
end

def cards
  LIBRARY.load_file(ENV.fetch('CORVALE_INPUT'))
  values = LIBRARY.moic_data(9)
  expect(values[0, 3] + values[6, 3], [6378.135, 398600.8, 1.0826158e-3, 0.25, 0.0, 1e-12])
  expect(modes, [0, 1, 1])
  expect([LIBRARY.moic_data(0), LIBRARY.moic_data(129)], [[], [0.0] * 129])
end

IMAX = 2**31 - 1
LMAX = 2**63 - 1
STEP = 1_234_567_890_123_456_789
GIVEN = Corvale::Values.new('A', IMAX, LMAX, 0.1, '  text', [IMAX, 2, -3], [LMAX, 5, -6], [-0.0, 5e-324, 1e308],
                            [~IMAX, 8, 9, 10, 11, IMAX], [~LMAX, 14, 15, 16, 17, LMAX], [0.2, 0.3, 0.4, 0.5, 0.6, 0.7])
CHANGED = Corvale::Values.new(
  'Z', ~IMAX, ~LMAX + 1, 0.1 + 42.123456, "It doesn't matter what your string was.", [~IMAX, 3, -2],
  [~LMAX + STEP - 1, STEP + 5, STEP - 6], GIVEN.d3.map { |d| d + 42.0 }, [~IMAX + 1, 9, 10, 11, 12, ~IMAX],
  [~LMAX + 6, 20, 21, 22, 23, ~LMAX + 5], GIVEN.d6.map { |d| d + 7.6 }
)

def self_tests # reals by their bits: 0.0.eql?(-0.0)
  got = LIBRARY.test_interface(GIVEN)
  expect(got, GIVEN)
  expect(got.d3.pack('G*'), GIVEN.d3.pack('G*'))
  expect(LIBRARY.test_interface2(GIVEN), CHANGED)
  expect(LIBRARY.test_interface3(GIVEN.i3, GIVEN.i6), [[-4, 8, -12], [~IMAX, 40, 45, 50, 55, IMAX - 4]])
end

def refusals
  fits = 'n' * 512
  [' blank', "tab\t", "\u00e9t\u00e9", "del\x7f", "nul\0", "line\n", "#{fits}n"].each do |text|
    %i[load_file open_log_file log_message].each { |call| fails(ArgumentError) { LIBRARY.send(call, text) } }
  end
  fails(ArgumentError) { LIBRARY.log_message('n' * 129) }
  { ch: 'AB', i: 2**31, l: 2**63, d: '1', text: "\t", i3: [1, 2], l6: [1] * 7, d3: [1, 2, 'x'], i6: nil }.each do |field, value|
    wrong = GIVEN.dup.tap { |values| values[field] = value }
    %i[test_interface test_interface2].each { |call| fails(ArgumentError) { LIBRARY.send(call, wrong) } }
  end
  [-1, 1.5, nil, 2**31].each { |count| fails(ArgumentError) { LIBRARY.moic_data(count) } }
  fails(Corvale::Error, 'FileOpen: File name is empty.') { LIBRARY.load_file('') }
  fails(Corvale::Error, "FileOpen: Unable to open file \"#{'n' * 97}") { LIBRARY.load_file(fits) }
  %w[no-such.so libc.so.6].each { |path| fails(Fiddle::DLError) { Corvale::Library.new(path) } }
end

expect(declared, table)
identity
key_modes
Dir.mktmpdir { |folder| log(folder) }
cards
self_tests
refusals
expect(CALLED.keys.sort, Corvale::Api::DECLARATIONS.keys.map(&:to_s).sort)
checked = table.grep(/\Aargument /).size
puts "Ruby: #{CALLED.size} of 20 functions called, #{checked} arguments checked, ok"
