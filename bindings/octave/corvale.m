% corvale  The C API of libCorvale: messages and log, key modes, input-file cards, self-tests.
%
%     corvale.loadFile('orbit.inp')
%     values = corvale.moicData(9)
%
% Errors    corvale:failed     the library returned status 2; the message is the library's
%           corvale:refused    an argument that the library would take otherwise; it was not called:
%                              characters outside codes 32 to 126, too many of them (512, messages
%                              128), a blank in front of a file name or message, an integer that does
%                              not fit its 32 or 64 bits, an array of another length or class
%           corvale:notLoaded  why the library cannot be loaded
% Texts     come back without the blanks that fill their buffers
% Integers  may be given as int32, int64 or double
% Loading   the first call loads what the environment variable CORVALE_LIBRARY names, or else
%           libCorvale.so.9 from where the system looks, with local scope
classdef corvale

  properties (Constant)
    % The fields of the values that the self-tests take and give: char, int32, int64, double, text,
    % then 3 and 6 of each kind of number.
    FIELDS = {'ch', 'i', 'l', 'd', 'str', 'i3', 'l3', 'd3', 'i6', 'l6', 'd6'};
  end

  methods (Static)

    function load(library)
      % Loads the library of that path; does nothing once one is loaded.
      corvale.call('load', library);
    end

    function init()
      % CorvaleInit: does nothing, the library is ready once it is loaded.
      corvale.call('CorvaleInit');
    end

    function text = info()
      % CorvaleGetInfo: name, version, build date, platform and compiler of the library.
      text = corvale.call('CorvaleGetInfo');
    end

    function names = initDllNames()
      % GetInitDllNames: the libraries that have to be initialised first, none.
      names = corvale.call('GetInitDllNames');
    end

    function openLogFile(name)
      % OpenLogFile: opens the log, created or emptied; from then on every message is a line of it too.
      corvale.call('OpenLogFile', name);
    end

    function closeLogFile()
      % CloseLogFile: closes the log, if one is open, and blanks the last error message.
      corvale.call('CloseLogFile');
    end

    function logMessage(message)
      % LogMessage: stores an informational message of up to 128 characters, also in an open log.
      corvale.call('LogMessage', message);
    end

    function message = lastErrMsg()
      % GetLastErrMsg: the last error message; it stays until the next or closeLogFile.
      message = corvale.call('GetLastErrMsg');
    end

    function message = lastInfoMsg()
      % GetLastInfoMsg: the last informational message.
      message = corvale.call('GetLastInfoMsg');
    end

    function mode = dupKeyMode()
      % GetDupKeyMode: the duplication key mode, 0 or 1.
      mode = corvale.call('GetDupKeyMode');
    end

    function setDupKeyMode(mode)
      % SetDupKeyMode: sets the duplication key mode; fails for a mode other than 0 and 1.
      corvale.call('SetDupKeyMode', mode);
    end

    function mode = allKeyMode()
      % GetAllKeyMode: the all-key mode, 0 or 1.
      mode = corvale.call('GetAllKeyMode');
    end

    function setAllKeyMode(mode)
      % SetAllKeyMode: sets the all-key mode; fails for a mode other than 0 and 1.
      corvale.call('SetAllKeyMode', mode);
    end

    function resetAllKeyMode()
      % ResetAllKeyMode: sets the all-key and the duplication key mode back to 0.
      corvale.call('ResetAllKeyMode');
    end

    function mode = elsetKeyMode()
      % GetElsetKeyMode: the element-set key mode, 0 or 1.
      mode = corvale.call('GetElsetKeyMode');
    end

    function setElsetKeyMode(mode)
      % SetElsetKeyMode: sets the element-set key mode; fails for a mode other than 0 and 1.
      corvale.call('SetElsetKeyMode', mode);
    end

    function loadFile(name)
      % CorvaleLoadFile: reads the cards of an input file. Fails when it cannot be opened, never for
      % what it holds.
      corvale.call('CorvaleLoadFile', name);
    end

    function values = moicData(count)
      % GetMOICData: the first `count` values of the array that QZ_MOIC cards fill, a row; for more
      % than 128 the library gives that many zeros.
      values = corvale.call('GetMOICData', count);
    end

    function out = testInterface(values)
      % TestInterface: gives every field of `values` back as it arrived in the library.
      out = corvale.callWithFields('TestInterface', values);
    end

    function out = testInterface2(values)
      % TestInterface2: gives every field of `values` changed by a fixed amount; integers wrap.
      out = corvale.callWithFields('TestInterface2', values);
    end

    function [i3Out, i6Out] = testInterface3(i3, i6)
      % TestInterface3: 4 times i3 and 5 times i6; products wrap.
      [i3Out, i6Out] = corvale.call('TestInterface3', i3, i6);
    end

  end

  methods (Static, Access = private)

    function varargout = call(name, varargin)
      [id, message, out] = corvale_mex(name, varargin{:});
      if ~isempty(id)
        error(id, '%s', message);
      end
      varargout = out;
    end

    function out = callWithFields(name, values)
      given = cellfun(@(field) values.(field), corvale.FIELDS, 'UniformOutput', false);
      taken = cell(size(given));
      [taken{:}] = corvale.call(name, given{:});
      out = cell2struct(taken(:), corvale.FIELDS(:));
    end

  end
end
