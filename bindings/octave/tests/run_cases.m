% Answers the cases of tests/bindings/check.py with this binding.
function run_cases()
  while ischar(line = fgetl(stdin))
    words = strsplit(line, ' ');
    given = cellfun(@decoded, words(2:end), 'UniformOutput', false);
    try
      printf('ok %s\n', outcome(words{1}, given));
    catch failure
      switch failure.identifier
        case 'corvale:failed'
          printf('failed %s\n', encoded(failure.message));
        case 'corvale:refused'
          printf('refused\n');
        case 'corvale:notLoaded'
          printf('unloaded %s\n', encoded(failure.message));
        otherwise
          rethrow(failure);
      end
    end
  end
  check_own_refusals();
end

% What a call of the C function gives, as it is said.
function said = outcome(name, given)
  said = '';
  switch name
    case 'Open'
      cellfun(@corvale.load, given);  % else the first call loads what CORVALE_LIBRARY names
    case 'CorvaleInit'
      corvale.init();
    case 'CorvaleGetInfo'
      said = encoded(corvale.info());
    case 'GetInitDllNames'
      said = encoded(corvale.initDllNames());
    case 'OpenLogFile'
      corvale.openLogFile(given{:});
    case 'CloseLogFile'
      corvale.closeLogFile();
    case 'LogMessage'
      corvale.logMessage(given{:});
    case 'GetLastErrMsg'
      said = encoded(corvale.lastErrMsg());
    case 'GetLastInfoMsg'
      said = encoded(corvale.lastInfoMsg());
    case 'GetDupKeyMode'
      said = encoded(int32(corvale.dupKeyMode()));
    case 'SetDupKeyMode'
      corvale.setDupKeyMode(given{:});
    case 'GetAllKeyMode'
      said = encoded(int32(corvale.allKeyMode()));
    case 'SetAllKeyMode'
      corvale.setAllKeyMode(given{:});
    case 'ResetAllKeyMode'
      corvale.resetAllKeyMode();
    case 'GetElsetKeyMode'
      said = encoded(int32(corvale.elsetKeyMode()));
    case 'SetElsetKeyMode'
      corvale.setElsetKeyMode(given{:});
    case 'CorvaleLoadFile'
      corvale.loadFile(given{:});
    case 'GetMOICData'
      said = encoded(corvale.moicData(given{:}));
    case 'TestInterface'
      said = encoded(struct2cell(corvale.testInterface(values_of(given))));
    case 'TestInterface2'
      said = encoded(struct2cell(corvale.testInterface2(values_of(given))));
    case 'TestInterface3'
      [i3, i6] = corvale.testInterface3(given{:});
      said = encoded({i3, i6});
    otherwise
      error('no call of %s', name);
  end
end

function values = values_of(given)
  values = cell2struct(given(:), corvale.FIELDS(:));
end

function value = decoded(token)
  elements = cellfun(@(element) element(2:end), strsplit(token, ','), 'UniformOutput', false);
  switch token(1)
    case 'i'
      value = str2double(elements);
      if all(value >= -2^31 & value < 2^31)
        value = int32(value);
      end
    case 'l'
      value = cellfun(@int64_of, elements);
      if any(str2double(elements) == 2^63 & ~strcmp(elements, '9223372036854775807'))
        value = str2double(elements);
      end
    case 'r'
      value = hex2num(elements)';
    case 'c'
      value = char(str2double(elements));
    case 'x'
      value = cellfun(@(text) char(sscanf(text, '%2x')'), elements, 'UniformOutput', false);
      if isscalar(value)
        value = value{1};
      end
  end
end

function value = int64_of(digits)
  value = int64(0);
  for digit = digits(isdigit(digits)) - '0'
    value = value * 10 - digit;  % downwards, where the least integer is, too
  end
  if digits(1) ~= '-'
    value = -value;
  end
end

% Numbers are said as what their class is.
function said = encoded(value)
  switch class(value)
    case 'cell'
      said = strjoin(cellfun(@encoded, value(:)', 'UniformOutput', false), ' ');
    case 'char'
      said = ['x' sprintf('%02x', double(value))];
    case 'double'
      said = strjoin(cellfun(@(real) ['r' num2hex(real)], num2cell(value), 'UniformOutput', false), ' ');
    case {'int32', 'int64'}
      said = strjoin(cellfun(@(whole) sprintf('%d', whole), num2cell(value), 'UniformOutput', false), ' ');
  end
end

% What no case can say.
function check_own_refusals()
  assert(corvale_mex('CloseLogFile', 1), 'corvale:refused')  % an argument too many
  assert(corvale_mex('GetMOICData'), 'corvale:refused')  % an argument too few
  assert(corvale_mex('TestInterface3', int32([1 2 3]), [1i 2 3 4 5 6]), 'corvale:refused')  % complex
end
