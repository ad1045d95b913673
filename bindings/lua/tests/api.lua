-- Walks the table of the C API and proves that this binding declares and calls all of it.

local module = require('corvale')

local function content(path)
  local file = assert(io.open(path))
  local text = file:read('*a')
  file:close()
  return text
end

-- Any value as one text; reals by their bits.
local function shown(value)
  if type(value) == 'number' then return ('%a'):format(value) end
  if type(value) ~= 'table' then return tostring(value) end
  local parts = {}
  for key, element in pairs(value) do parts[#parts + 1] = key .. '=' .. shown(element) end
  table.sort(parts)
  return '{' .. table.concat(parts, ' ') .. '}'
end

local function expect(got, wanted)
  if shown(got) ~= shown(wanted) then error(('got %s, wanted %s'):format(shown(got), shown(wanted)), 2) end
end

-- That a call fails with this message of the library, or is refused where there is none.
local function fails(message, call, ...)
  local has_passed, reason = pcall(call, ...)
  if has_passed then error('no failure', 2) end
  local is_failure = getmetatable(reason) == module.Error
  expect(is_failure and reason.message or nil, message)
end

-- How the binding has to declare an argument of the table.
local function declared(name, kind, width, way)
  local types = {text = 'char', char = 'char', int32 = 'int32_t', int64 = 'int64_t', real64 = 'double'}
  local text = types[kind] .. ' ' .. name
  if width == '1' and way == 'in' then return text end
  return (way == 'in' and 'const ' or '') .. text .. '[' .. width:gsub('count', '') .. ']'
end

local functions, checked, prototypes = {}, 0, {}
for line in content(os.getenv('CORVALE_INTERFACE')):gmatch('[^\n]+') do
  local name, result = line:match('^function (%w+) (%w+)$')
  if name then
    functions[#functions + 1] = name
    prototypes[#prototypes + 1] = {result:gsub('int32', 'int32_t') .. ' ' .. name}
  elseif line:match('^argument ') then
    local prototype = prototypes[#prototypes]
    prototype[#prototype + 1] = declared(line:match('^argument (%w+) (%w+) (%w+) (%w+)$'))
    checked = checked + 1
  end
end
for k, prototype in ipairs(prototypes) do
  local head = table.remove(prototype, 1)
  prototypes[k] = ('%s(%s);'):format(head, #prototype > 0 and table.concat(prototype, ', ') or 'void')
end
expect(module.DECLARATIONS:gsub('%s+', ' '):gsub('%( ', '('):gsub(' $', ''), (table.concat(prototypes, ' ')))

local corvale = module.open()
local called, count = {}, 0
local api = corvale.api
corvale.api = setmetatable({}, {__index = function(_, name) -- every function is fetched when it is called
  if not called[name] then called[name], count = true, count + 1 end
  return api[name]
end})

corvale:init()
expect(corvale:info():sub(1, 41), 'Arvenit Corvale - Version: v9.4 - Build: ')
expect(corvale:init_dll_names(), '')

local function modes() return {corvale:dup_key_mode(), corvale:all_key_mode(), corvale:elset_key_mode()} end
corvale:set_dup_key_mode(1)
corvale:set_all_key_mode(1)
expect(modes(), {1, 1, 0})
corvale:set_elset_key_mode(1)
corvale:reset_all_key_mode()
expect(modes(), {0, 0, 1})
corvale:set_elset_key_mode(0)
local reason = 'SetDupKeyMode: invalid input value for DUPLICATION key mode.'
fails(reason, corvale.set_dup_key_mode, corvale, 2)
expect(corvale:last_err_msg(), reason)

local log = os.tmpname()
reason = 'FileOpen: Unable to open file "no such file" for reading.'
corvale:open_log_file(log)
corvale:log_message('pass 1 of 3')
fails(reason, corvale.load_file, corvale, 'no such file')
corvale:close_log_file()
expect({corvale:last_info_msg(), corvale:last_err_msg()}, {'pass 1 of 3', ''})
expect(content(log), ('pass 1 of 3' .. (' '):rep(117) .. '\nError-%s\n'):format(reason))
os.remove(log)
fails('OpenLogFile: log file failed to open.', corvale.open_log_file, corvale, log .. '/log')
corvale:close_log_file()

corvale:load_file(os.getenv('CORVALE_INPUT'))
expect(modes(), {0, 1, 1})
local values = corvale:moic_data(9)
expect({values[1], values[2], values[3]}, {6378.135, 398600.8, 1.0826158e-3})
expect({values[7], values[8], values[9]}, {0.25, 0, 1e-12})
local zeros = {}
for k = 1, 129 do zeros[k] = 0 end
expect(corvale:moic_data(129), zeros)
expect(corvale:moic_data(0), {})

local imax, imin, lmax, lmin = 2 ^ 31 - 1, -2 ^ 31, 0x7fffffffffffffffLL, -0x7fffffffffffffffLL - 1
local minus_zero = tonumber('-0')
local step = 1234567890123456789LL
local given = {
  ch = 'A', i = imax, l = lmax, d = 0.1, text = '  text', i3 = {imax, 2, -3}, l3 = {lmax, 5LL, -6LL},
  d3 = {minus_zero, 5e-324, 1e308}, i6 = {imin, 8, 9, 10, 11, imax}, l6 = {lmin, 14LL, 15LL, 16LL, 17LL, lmax},
  d6 = {0.2, 0.3, 0.4, 0.5, 0.6, 0.7},
}
local function plus(reals, amount)
  local sums = {}
  for k, real in ipairs(reals) do sums[k] = real + amount end
  return sums
end
expect(1 / given.d3[1], -1 / 0)
expect(corvale:test_interface(given), given)
expect(corvale:test_interface2(given), {
  ch = 'Z', i = imin, l = lmin + 1, d = 0.1 + 42.123456, text = "It doesn't matter what your string was.",
  i3 = {imin, 3, -2}, l3 = {lmin + step - 1, step + 5, step - 6}, d3 = plus(given.d3, 42.0),
  i6 = {imin + 1, 9, 10, 11, 12, imin}, l6 = {lmin + 6, 20LL, 21LL, 22LL, 23LL, lmin + 5}, d6 = plus(given.d6, 7.6),
})
expect({corvale:test_interface3(given.i3, given.i6)}, {{-4, 8, -12}, {imin, 40, 45, 50, 55, imax - 4}})

local fits = ('n'):rep(512)
for _, text in ipairs({' blank', 'tab\t', '\xe9t\xe9', 'del\127', 'nul\0', 'line\n', fits .. 'n', 7}) do
  for _, call in ipairs({'load_file', 'open_log_file', 'log_message'}) do fails(nil, corvale[call], corvale, text) end
end
fails(nil, corvale.log_message, corvale, ('n'):rep(129))
local wrong = {ch = 'AB', i = 2 ^ 31, l = 2 ^ 63, d = '1', text = '\t', i3 = {1, 2}, l6 = {1, 2, 3, 4, 5, 6, 7}, d3 = {1, 2, 'x'}, i6 = 1}
for field, value in pairs(wrong) do
  local changed = setmetatable({[field] = value}, {__index = given})
  for _, call in ipairs({'test_interface', 'test_interface2'}) do fails(nil, corvale[call], corvale, changed) end
end
for _, number in ipairs({-1, 1.5, 2 ^ 31, '1'}) do fails(nil, corvale.moic_data, corvale, number) end
fails('FileOpen: File name is empty.', corvale.load_file, corvale, '')
fails('FileOpen: Unable to open file "' .. ('n'):rep(97), corvale.load_file, corvale, fits)
for _, path in ipairs({'no-such.so', 'libc.so.6'}) do fails(nil, module.open, path) end

for _, name in ipairs(functions) do expect(called[name], true) end
expect(count, #functions)
print(('Lua: %d of 20 functions called, %d arguments checked, ok'):format(count, checked))
