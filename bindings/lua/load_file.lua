-- Loads an input file and prints what its cards set: luajit load_file.lua INPUT-FILE

local function show(name)
  if not name then error('usage: load_file.lua INPUT-FILE', 0) end
  local corvale = require('corvale').open()
  corvale:load_file(name)
  print(('element-set key mode %d, all-key mode %d'):format(corvale:elset_key_mode(), corvale:all_key_mode()))
  for number, value in ipairs(corvale:moic_data(128)) do
    if value ~= 0 then print(('MOIC(%d) = %.17g'):format(number, value)) end
  end
end

local is_shown, reason = pcall(show, arg[1])
if not is_shown then
  io.stderr:write(tostring(reason), '\n')
  os.exit(2)
end
