% Walks the table of the C API and proves that this binding declares and calls all of it.
function test_corvale()
  table = regexprep(fileread(getenv('CORVALE_INTERFACE')), '#[^\n]*\n', '');
  table = regexprep(strtrim(table), '\n+', "\n");
  [~, ~, declared] = corvale_mex('interface');
  check_lines(strsplit(strtrim(declared{1}), "\n"), strsplit(table, "\n"));
  check_fails('corvale:notLoaded', '', @() corvale.load('no-such.so'));
  check_fails('corvale:notLoaded', '', @() corvale.load('libc.so.6'));
  functions = regexp(table, 'function (\w+)', 'tokens');
  cellfun(@(name) call_function(name{1}), functions);
  refusals();
  printf('Octave: %d of 20 functions called, %d arguments checked, ok\n', numel(functions), ...
         numel(regexp(declared{1}, 'argument ')));
end

function call_function(name)
  switch name
    case 'CorvaleInit'
      corvale.init();
    case 'CorvaleGetInfo'
      check(strncmp(corvale.info(), 'Arvenit Corvale - Version: v9.4 - Build: ', 41), name);
    case 'GetInitDllNames'
      check(isempty(corvale.initDllNames()), name);
    case {'GetDupKeyMode', 'SetDupKeyMode', 'GetAllKeyMode', 'SetAllKeyMode', 'ResetAllKeyMode', ...
          'GetElsetKeyMode', 'SetElsetKeyMode'}
      modes();
    case {'OpenLogFile', 'CloseLogFile', 'LogMessage', 'GetLastErrMsg', 'GetLastInfoMsg'}
      log_file();
    case {'CorvaleLoadFile', 'GetMOICData'}
      cards();
    case {'TestInterface', 'TestInterface2', 'TestInterface3'}
      self_tests();
    otherwise
      error('no call of %s', name);
  end
end

function modes()
  cases = {@corvale.setDupKeyMode, 'SetDupKeyMode: invalid input value for DUPLICATION key mode.'
           @corvale.setAllKeyMode, 'SetAllKeyMode: invalid input value for elset key mode.'
           @corvale.setElsetKeyMode, 'SetElsetKeyMode: invalid input value for elset key mode.'};
  for place = 1:3
    [set, message] = cases{place, :};
    set(1);
    check_fails('corvale:failed', message, @() set(2));
    check_same(corvale.lastErrMsg(), message, 'the stored message');
    check_fails('corvale:refused', 'mode is no integer that fits', @() set(2^32 + 1));
  end
  check_same(all_modes(), [1 1 1], 'modes that were set');
  corvale.resetAllKeyMode();
  check_same(all_modes(), [0 0 1], 'modes after the reset');
  corvale.setElsetKeyMode(0);
end

function log_file()
  message = 'FileOpen: Unable to open file "no such file" for reading.';
  name = tempname();
  check_fails('corvale:failed', 'OpenLogFile: log file failed to open.', ...
              @() corvale.openLogFile(tempdir()));
  corvale.openLogFile(name);
  corvale.logMessage('pass 1 of 3');
  check_fails('corvale:failed', message, @() corvale.loadFile('no such file'));
  corvale.closeLogFile();
  check_same(fileread(name), sprintf('%-128s\nError-%s\n', 'pass 1 of 3', message), 'the log');
  check_same(corvale.lastInfoMsg(), 'pass 1 of 3', 'the last informational message');
  check(isempty(corvale.lastErrMsg()), 'no error after closing');
  delete(name);
end

function cards()
  corvale.loadFile(getenv('CORVALE_INPUT'));
  check_same([corvale.elsetKeyMode() corvale.allKeyMode()], [1 1], 'modes of cards');
  values = corvale.moicData(128);
  check_same(values([1:3 7:9]), [6378.135 398600.8 1.0826158e-3 0.25 0 1e-12], 'MOIC');
  check_same(corvale.moicData(129), zeros(1, 129), '129 zeros');
  check_same(corvale.moicData(0), zeros(1, 0), 'none for a count of 0');
  corvale.resetAllKeyMode();
end

function values = given()
  values = struct('ch', char(254), 'i', intmax('int32'), 'l', intmax('int64'), 'd', 0.1, ...
                  'str', '  text~', 'i3', int32([intmax('int32') 2 -3]), ...
                  'l3', [intmax('int64') int64([5 -6])], 'd3', [-0.0 2^-1074 1e308], ...
                  'i6', [intmin('int32') int32([8 9 10 11]) intmax('int32')], ...
                  'l6', [intmin('int64') int64([14 15 16 17]) intmax('int64')], ...
                  'd6', [0.2 0.3 0.4 0.5 0.6 0.7]);
end

function self_tests()
  from = given();
  to = corvale.testInterface(from);
  check_same(to, from, 'what goes in comes out');
  check_same(1 ./ to.d3(1), -Inf, 'the sign of zero');

  changed = from;
  changed.ch = 'Z';
  changed.i = intmin('int32');
  changed.l = intmin('int64') + 1;
  changed.d = 0.1 + 42.123456;
  changed.str = 'It doesn''t matter what your string was.';
  changed.i3 = [intmin('int32') int32([3 -2])];
  step = int64(1234567890) * int64(1000000000) + int64(123456789);
  changed.l3 = [intmin('int64') + (step - 1), step + 5, step - 6];
  changed.d3 = from.d3 + 42.0;
  changed.i6 = [intmin('int32') + 1, int32([9 10 11 12]), intmin('int32')];
  changed.l6 = [intmin('int64') + 6, int64([20 21 22 23]), intmin('int64') + 5];
  changed.d6 = from.d6 + 7.6;
  check_same(corvale.testInterface2(from), changed, 'what changes in place');

  [i3, i6] = corvale.testInterface3(from.i3, from.i6);
  check_same(i3, int32([-4 8 -12]), '4 times, wrapped');
  check_same(i6, [intmin('int32') int32([40 45 50 55]) intmax('int32') - 4], '5 times, wrapped');
end

function refusals()
  names = {' blank', "tab\t", "\303\251t\303\251", char([100 127]), "nul\0", repmat('n', 1, 513), 7};
  for name = names
    for call = {@corvale.loadFile, @corvale.openLogFile, @corvale.logMessage}
      check_fails('corvale:refused', '', @() call{1}(name{1}));
    end
  end
  check_fails('corvale:refused', '', @() corvale.logMessage(repmat('m', 1, 129)));
  corvale.logMessage(repmat('m', 1, 128));
  check_same(corvale.lastInfoMsg(), repmat('m', 1, 128), '128 characters fit');
  check_fails('corvale:failed', 'FileOpen: File name is empty.', @() corvale.loadFile(''));
  wrong = {'ch', 'AB'; 'i', 2^31; 'i', 0.5; 'i', NaN; 'i', intmax('int64'); 'l', 2^63
           'd', int32(1); 'd', 'x'; 'd', 1i; 'str', repmat('t', 1, 513); 'i3', [1 2]; 'd6', ones(1, 7)};
  for place = 1:rows(wrong)
    values = given();
    values.(wrong{place, 1}) = wrong{place, 2};
    check_fails('corvale:refused', '', @() corvale.testInterface(values));
    check_fails('corvale:refused', '', @() corvale.testInterface2(values));
  end
  check_fails('corvale:refused', '', @() corvale.moicData(-1));
  check_same(corvale_mex('CloseLogFile', 1), 'corvale:refused', 'an argument too many');
  check_same(corvale_mex('GetMOICData'), 'corvale:refused', 'an argument too few');
end

function modes = all_modes()
  modes = [corvale.dupKeyMode() corvale.allKeyMode() corvale.elsetKeyMode()];
end

function check(holds, what)
  if ~holds
    error('failed: %s', what);
  end
end

% Stops at the first line that differs.
function check_lines(declared, table)
  for place = 1:min(numel(declared), numel(table))
    if ~strcmp(declared{place}, table{place})
      error('declared: %s, in the table: %s', declared{place}, table{place});
    end
  end
  check_same(numel(declared), numel(table), 'as many lines as the table');
end

function check_same(have, want, what)
  if ~isequal(have, want) || ~strcmp(class(have), class(want))
    disp('have:'), disp(have), disp('want:'), disp(want)
    error('failed: %s', what);
  end
end

% The call has to fail with that identifier and message; any message if none is given.
function check_fails(id, message, call)
  try
    call();
  catch failure
    check_same(failure.identifier, id, failure.message);
    if ~isempty(message)
      check_same(failure.message, message, 'the message');
    end
    return
  end
  error('did not fail: %s %s', id, func2str(call));
end
