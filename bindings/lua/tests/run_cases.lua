-- Answers the cases of tests/bindings/check.py with this binding.

local ffi = require('ffi')
local module = require('corvale')

local function bytes(hex) return (hex:gsub('..', function(byte) return string.char(tonumber(byte, 16)) end)) end
local function text(value) return 'x' .. value:gsub('.', function(byte) return ('%02x'):format(byte:byte()) end) end

-- A real and its bits, most significant byte first.
local box = ffi.new('union { double real; uint8_t bytes[8]; }')
local function real_of(bits)
  for k = 0, 7 do box.bytes[7 - k] = tonumber(bits:sub(2 * k + 1, 2 * k + 2), 16) end
  return box.real
end
local function real(value)
  box.real = value
  return 'r' .. ffi.string(box.bytes, 8):reverse():gsub('.', function(byte) return ('%02x'):format(byte:byte()) end)
end
local function integer(value) return (ffi.istype('int64_t', value) and tostring(value):sub(1, -3) or ('%d'):format(value)) end

-- An integer of 64 bits; a number if it does not fit.
local function wide(digits)
  local value = 0LL
  for digit in digits:gmatch('%d') do value = value * 10 - tonumber(digit) end
  if digits:sub(1, 1) == '-' then return value end
  return value == -value and value ~= 0 and tonumber(digits) or -value
end
local DECODE = {
  i = tonumber, l = wide, r = real_of, c = function(code) return string.char(tonumber(code)) end, x = bytes,
  n = function() return nil end,
}

local function decoded(token)
  local elements = {}
  for letter, element in token:gmatch('(%a)([^,]*)') do elements[#elements + 1] = DECODE[letter](element) end
  if token:find(',') then return elements end
  return elements[1]
end

local FIELDS = {'ch', 'i', 'l', 'd', 'text', 'i3', 'l3', 'd3', 'i6', 'l6', 'd6'}
local ENCODE = {c = text, i = integer, l = integer, d = real, t = text}

local function each(encode, values)
  local said = {}
  for k, value in ipairs(values) do said[k] = encode(value) end
  return table.concat(said, ' ')
end

-- A call with fields, whose results are said in their order.
local function with_fields(call)
  return function(corvale, ...)
    local values = {}
    for k, field in ipairs(FIELDS) do values[field] = select(k, ...) end
    local got, said = corvale[call](corvale, values), {}
    for k, field in ipairs(FIELDS) do
      local value = got[field]
      said[k] = each(ENCODE[field:sub(1, 1)], type(value) == 'table' and value or {value})
    end
    return table.concat(said, ' ')
  end
end

-- A call whose result is said that way.
local function giving(encode, call)
  return function(corvale, ...) return encode(corvale[call](corvale, ...)) end
end

local function nothing(...)
  assert(select('#', ...) == 0, 'a result where there is none')
  return ''
end

local CALLS = {
  CorvaleInit = giving(nothing, 'init'),
  CorvaleGetInfo = giving(text, 'info'),
  GetInitDllNames = giving(text, 'init_dll_names'),
  OpenLogFile = giving(nothing, 'open_log_file'),
  CloseLogFile = giving(nothing, 'close_log_file'),
  LogMessage = giving(nothing, 'log_message'),
  GetLastErrMsg = giving(text, 'last_err_msg'),
  GetLastInfoMsg = giving(text, 'last_info_msg'),
  GetDupKeyMode = giving(integer, 'dup_key_mode'),
  SetDupKeyMode = giving(nothing, 'set_dup_key_mode'),
  GetAllKeyMode = giving(integer, 'all_key_mode'),
  SetAllKeyMode = giving(nothing, 'set_all_key_mode'),
  ResetAllKeyMode = giving(nothing, 'reset_all_key_mode'),
  GetElsetKeyMode = giving(integer, 'elset_key_mode'),
  SetElsetKeyMode = giving(nothing, 'set_elset_key_mode'),
  CorvaleLoadFile = giving(nothing, 'load_file'),
  GetMOICData = giving(function(values) return each(real, values) end, 'moic_data'),
  TestInterface = with_fields('test_interface'),
  TestInterface2 = with_fields('test_interface2'),
  TestInterface3 = giving(function(i3, i6) return each(integer, i3) .. ' ' .. each(integer, i6) end, 'test_interface3'),
}

local corvale
for line in io.lines() do
  local name, given, count = line:match('^%w+'), {}, 0
  for token in line:gmatch(' (%S+)') do
    count = count + 1
    given[count] = decoded(token)
  end
  local has_passed, said = pcall(function()
    if name ~= 'Open' then return CALLS[name](corvale, unpack(given, 1, count)) end
    corvale = module.open(given[1])
    return ''
  end)
  if has_passed then print('ok ' .. said)
  elseif getmetatable(said) == module.Error then print('failed ' .. text(said.message))
  else print(name == 'Open' and 'unloaded ' .. text(said) or 'refused') end
end
