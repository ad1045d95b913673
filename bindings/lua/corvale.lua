--- The C API of libCorvale: messages and log, key modes, input-file cards, interface self-tests.
--
--     local corvale = require('corvale').open()
--     corvale:load_file('orbit.inp')
--     local values = corvale:moic_data(128)
--
-- The library has one state for the whole process. Texts come back without the blanks that fill their
-- buffers, their bytes unchanged.

local ffi = require('ffi')

local module = {}

--- The 20 functions as the library sees them. Arrays carry their widths, one element included; what is
-- passed by value has no brackets.
module.DECLARATIONS = [[
int32_t CorvaleInit(void);
void CorvaleGetInfo(char info[128]);
void GetInitDllNames(char names[512]);
int32_t OpenLogFile(const char fileName[512]);
void CloseLogFile(void);
void LogMessage(const char message[128]);
void GetLastErrMsg(char message[128]);
void GetLastInfoMsg(char message[128]);
int32_t GetDupKeyMode(void);
int32_t SetDupKeyMode(int32_t mode);
int32_t GetAllKeyMode(void);
int32_t SetAllKeyMode(int32_t mode);
void ResetAllKeyMode(void);
int32_t GetElsetKeyMode(void);
int32_t SetElsetKeyMode(int32_t mode);
int32_t CorvaleLoadFile(const char fileName[512]);
void GetMOICData(int32_t count, double values[]);
void TestInterface(
  char cIn, char cOut[1], int32_t iIn, int32_t iOut[1],
  int64_t lIn, int64_t lOut[1], double dIn, double dOut[1],
  const char strIn[512], char strOut[512],
  const int32_t i3In[3], int32_t i3Out[3], const int64_t l3In[3], int64_t l3Out[3],
  const double d3In[3], double d3Out[3], const int32_t i6In[6], int32_t i6Out[6],
  const int64_t l6In[6], int64_t l6Out[6], const double d6In[6], double d6Out[6]);
void TestInterface2(
  char ch[1], int32_t i[1], int64_t l[1], double d[1], char str[512],
  int32_t i3[3], int64_t l3[3], double d3[3], int32_t i6[6], int64_t l6[6], double d6[6]);
void TestInterface3(
  const int32_t i3In[3], int32_t i3Out[3], const int32_t i6In[6], int32_t i6Out[6]);
]]
ffi.cdef(module.DECLARATIONS)

local NAME_WIDTH, MESSAGE_WIDTH = 512, 128

local Error = {}
Error.__index = Error
Error.__tostring = function(self) return self.message end

--- What is raised when the library returned status 2: a table whose `message` is that of the library.
module.Error = Error

local Library = {}
Library.__index = Library

-- Raises what the library would take otherwise than given, at the caller of the binding.
local function refuse(text, ...)
  error(text:format(...), 0)
end

-- Of each kind of number: its type in C and whether a value is one.
local KINDS = {
  i = {'int32_t', function(v)
    return type(v) == 'number' and v == math.floor(v) and v >= -2 ^ 31 and v < 2 ^ 31
  end},
  l = {'int64_t', function(v)
    if ffi.istype('int64_t', v) then return true end
    return type(v) == 'number' and v == math.floor(v) and v >= -2 ^ 63 and v < 2 ^ 63
  end},
  d = {'double', function(v) return type(v) == 'number' end},
}

-- A value that fits its kind; `name` begins with the letter of the kind.
local function number(name, value)
  local kind, fits = unpack(KINDS[name:sub(1, 1)])
  if not fits(value) then refuse('%s: %s is no %s', name, tostring(value), kind) end
  return value
end

-- An array in C that holds a table of exactly that many values; zeros without one.
local function array(name, elements, values)
  local result = ffi.new(('%s[%d]'):format(KINDS[name:sub(1, 1)][1], elements))
  if not values then return result end
  if type(values) ~= 'table' or #values ~= elements then refuse('%s: not a table of %d', name, elements) end
  for k = 1, elements do result[k - 1] = number(name, values[k]) end
  return result
end

local function unpacked(values, elements)
  local result = {}
  for k = 1, elements do result[k] = values[k - 1] end
  return result
end

-- The text in a buffer; refused when the library would not see all of it.
local function filled(text, width)
  if type(text) ~= 'string' then refuse('%s: not a string', tostring(text)) end
  if text:find('[^ -~]') then refuse('%q: not printable ASCII', text) end
  if #text > width then refuse('%q: %d characters, %d fit', text, #text, width) end
  local buffer = ffi.new('char[?]', width)
  ffi.fill(buffer, width, (' '):byte())
  ffi.copy(buffer, text, #text)
  return buffer
end

-- A name or message; also refused when it begins with a blank, which the library drops.
local function filled_unindented(text, width)
  if tostring(text):sub(1, 1) == ' ' then refuse('%q: begins with a blank', text) end
  return filled(text, width)
end

-- What a buffer holds, without the blanks that fill it.
local function trimmed(buffer, width)
  while width > 0 and buffer[width - 1] == (' '):byte() do width = width - 1 end
  return ffi.string(buffer, width)
end

-- What a function of the library writes into a buffer.
local function read(call, width)
  local buffer = ffi.new('char[?]', width)
  call(buffer)
  return trimmed(buffer, width)
end

local function succeed(self, status)
  if status ~= 0 then error(setmetatable({message = self:last_err_msg()}, Error), 0) end
end

--- Loads a library by its path, or by its name from where the system looks, with local scope, to the
-- end of the process. Without one it is what CORVALE_LIBRARY names, or else libCorvale.so.9. Raises the
-- loader's reason.
function module.open(path)
  local api = ffi.load(path or os.getenv('CORVALE_LIBRARY') or 'libCorvale.so.9', false)
  for name in module.DECLARATIONS:gmatch('(%w+)%(') do
    local _ = api[name]
  end
  return setmetatable({api = api}, Library)
end

--- CorvaleInit. Does nothing: the library is ready once it is loaded.
function Library:init() succeed(self, self.api.CorvaleInit()) end

--- CorvaleGetInfo. Name, version, build date, platform and compiler.
function Library:info() return read(self.api.CorvaleGetInfo, MESSAGE_WIDTH) end

--- GetInitDllNames. The libraries that have to be initialised first: none.
function Library:init_dll_names() return read(self.api.GetInitDllNames, NAME_WIDTH) end

--- OpenLogFile. Opens the log, created or emptied; every message is from then on also a line of it.
function Library:open_log_file(name)
  succeed(self, self.api.OpenLogFile(filled_unindented(name, NAME_WIDTH)))
end

--- CloseLogFile. Closes the log, if one is open, and blanks the last error message.
function Library:close_log_file() self.api.CloseLogFile() end

--- LogMessage. Stores a message of at most 128 characters and writes it to an open log.
function Library:log_message(message) self.api.LogMessage(filled_unindented(message, MESSAGE_WIDTH)) end

--- GetLastErrMsg. The last error message; it stays until the next error or close_log_file.
function Library:last_err_msg() return read(self.api.GetLastErrMsg, MESSAGE_WIDTH) end

--- GetLastInfoMsg. The last informational message.
function Library:last_info_msg() return read(self.api.GetLastInfoMsg, MESSAGE_WIDTH) end

--- GetDupKeyMode. The duplication key mode, 0 or 1.
function Library:dup_key_mode() return self.api.GetDupKeyMode() end

--- SetDupKeyMode. A mode other than 0 and 1 raises and changes nothing.
function Library:set_dup_key_mode(mode) succeed(self, self.api.SetDupKeyMode(number('i', mode))) end

--- GetAllKeyMode. The all-key mode, 0 or 1.
function Library:all_key_mode() return self.api.GetAllKeyMode() end

--- SetAllKeyMode. A mode other than 0 and 1 raises and changes nothing.
function Library:set_all_key_mode(mode) succeed(self, self.api.SetAllKeyMode(number('i', mode))) end

--- ResetAllKeyMode. Sets the all-key and the duplication key mode back to 0.
function Library:reset_all_key_mode() self.api.ResetAllKeyMode() end

--- GetElsetKeyMode. The element-set key mode, 0 or 1.
function Library:elset_key_mode() return self.api.GetElsetKeyMode() end

--- SetElsetKeyMode. A mode other than 0 and 1 raises and changes nothing.
function Library:set_elset_key_mode(mode) succeed(self, self.api.SetElsetKeyMode(number('i', mode))) end

--- CorvaleLoadFile. Reads the cards of a file. Raises if it cannot be opened, never for what it holds.
function Library:load_file(name)
  succeed(self, self.api.CorvaleLoadFile(filled_unindented(name, NAME_WIDTH)))
end

--- GetMOICData. A table of the first values that QZ_MOIC cards set; more than 128 are all zeros.
function Library:moic_data(count)
  if number('i', count) < 0 then refuse('count: %d is negative', count) end
  local values = array('d', count)
  self.api.GetMOICData(count, values)
  return unpacked(values, count)
end

-- A character, which is a string of one byte, as C has it.
local function character(ch)
  if type(ch) ~= 'string' or #ch ~= 1 then refuse('ch: %s is not one byte', tostring(ch)) end
  return ch:byte()
end

-- What the interface tests take by address, with the values of a table or zeros.
local function packed(v)
  local one = function(name) return array(name, 1, v and {v[name]}) end
  return {
    ch = ffi.new('char[1]', v and character(v.ch) or 0), i = one('i'), l = one('l'), d = one('d'),
    text = filled(v and v.text or '', NAME_WIDTH),
    i3 = array('i3', 3, v and v.i3), l3 = array('l3', 3, v and v.l3), d3 = array('d3', 3, v and v.d3),
    i6 = array('i6', 6, v and v.i6), l6 = array('l6', 6, v and v.l6), d6 = array('d6', 6, v and v.d6),
  }
end

local function values_of(to)
  return {
    ch = ffi.string(to.ch, 1), i = to.i[0], l = to.l[0], d = to.d[0], text = trimmed(to.text, NAME_WIDTH),
    i3 = unpacked(to.i3, 3), l3 = unpacked(to.l3, 3), d3 = unpacked(to.d3, 3),
    i6 = unpacked(to.i6, 6), l6 = unpacked(to.l6, 6), d6 = unpacked(to.d6, 6),
  }
end

--- TestInterface. A table of every value as it arrived: `ch` one byte, `i` an integer of 32 bits, `l` of
-- 64 bits (int64_t when it comes back), `d` a number, `text` at most 512 characters; `i3`, `l3`, `d3`,
-- `i6`, `l6`, `d6` tables of three and six of these.
function Library:test_interface(values)
  local from, to = packed(values), packed()
  self.api.TestInterface(from.ch[0], to.ch, from.i[0], to.i, from.l[0], to.l, from.d[0], to.d,
    from.text, to.text, from.i3, to.i3, from.l3, to.l3, from.d3, to.d3,
    from.i6, to.i6, from.l6, to.l6, from.d6, to.d6)
  return values_of(to)
end

--- TestInterface2. The same values, each changed by a fixed amount; integers wrap.
function Library:test_interface2(values)
  local v = packed(values)
  self.api.TestInterface2(v.ch, v.i, v.l, v.d, v.text, v.i3, v.l3, v.d3, v.i6, v.l6, v.d6)
  return values_of(v)
end

--- TestInterface3. 4 times a table of three and 5 times a table of six; products wrap.
function Library:test_interface3(i3, i6)
  local i3_out, i6_out = array('i3', 3), array('i6', 6)
  self.api.TestInterface3(array('i3', 3, i3), i3_out, array('i6', 6, i6), i6_out)
  return unpacked(i3_out, 3), unpacked(i6_out, 6)
end

return module
