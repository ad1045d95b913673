"""The C API of libCorvale: messages and log, key modes, input-file cards, interface self-tests.

    from corvale.capi import Corvale

    corvale = Corvale()
    corvale.load_file("orbit.inp")
    print(corvale.moic_data(9))

The library has one state for the whole process, whichever Corvale is used. Any number of threads may
call any method: the binding makes their calls one after another, so that an error carries its own
message. Code that reaches the same library by another way is not held back by that.
"""

from __future__ import annotations

import ctypes
import errno
import functools
import operator
import os
import pathlib
import threading
from typing import Any, Final, NamedTuple, Union

StrPath = Union[str, "os.PathLike[str]"]


class CorvaleError(RuntimeError):
    """The library returned status 2; says what the library said."""


class CorvaleFileError(CorvaleError, OSError):
    """A file could not be opened. `filename` is its name, `errno` the system's reason, None where
    that is not known; what it says is what the library said."""

    def __init__(self, message: str, code: int | None = None, filename: str | None = None) -> None:
        super().__init__(message, code, filename)
        self.filename = filename
        if code is not None:
            self.errno = code

    def __str__(self) -> str:
        return str(self.args[0])


class Argument(NamedTuple):
    """One argument of a C function: `width` elements, a number or the name of another argument."""

    name: str
    kind: str
    width: str
    way: str


# The 20 functions: result, and arguments in the order of the call. All calls are made from this.
API: Final = {
    "CorvaleInit": ("int32", ""),
    "CorvaleGetInfo": ("void", "info text 128 out"),
    "GetInitDllNames": ("void", "names text 512 out"),
    "OpenLogFile": ("int32", "fileName text 512 in"),
    "CloseLogFile": ("void", ""),
    "LogMessage": ("void", "message text 128 in"),
    "GetLastErrMsg": ("void", "message text 128 out"),
    "GetLastInfoMsg": ("void", "message text 128 out"),
    "GetDupKeyMode": ("int32", ""),
    "SetDupKeyMode": ("int32", "mode int32 1 in"),
    "GetAllKeyMode": ("int32", ""),
    "SetAllKeyMode": ("int32", "mode int32 1 in"),
    "ResetAllKeyMode": ("void", ""),
    "GetElsetKeyMode": ("int32", ""),
    "SetElsetKeyMode": ("int32", "mode int32 1 in"),
    "CorvaleLoadFile": ("int32", "fileName text 512 in"),
    "GetMOICData": ("void", "count int32 1 in, values real64 count out"),
    "TestInterface": (
        "void",
        "cIn char 1 in, cOut char 1 out, iIn int32 1 in, iOut int32 1 out, lIn int64 1 in, "
        "lOut int64 1 out, dIn real64 1 in, dOut real64 1 out, strIn text 512 in, "
        "strOut text 512 out, i3In int32 3 in, i3Out int32 3 out, l3In int64 3 in, "
        "l3Out int64 3 out, d3In real64 3 in, d3Out real64 3 out, i6In int32 6 in, "
        "i6Out int32 6 out, l6In int64 6 in, l6Out int64 6 out, d6In real64 6 in, "
        "d6Out real64 6 out",
    ),
    "TestInterface2": (
        "void",
        "ch char 1 inout, i int32 1 inout, l int64 1 inout, d real64 1 inout, str text 512 inout, "
        "i3 int32 3 inout, l3 int64 3 inout, d3 real64 3 inout, i6 int32 6 inout, "
        "l6 int64 6 inout, d6 real64 6 inout",
    ),
    "TestInterface3": (
        "void",
        "i3In int32 3 in, i3Out int32 3 out, i6In int32 6 in, i6Out int32 6 out",
    ),
}

_C_TYPES: Final[dict[str, Any]] = {
    "char": ctypes.c_char,
    "text": ctypes.c_char,
    "int32": ctypes.c_int32,
    "int64": ctypes.c_int64,
    "real64": ctypes.c_double,
}
_BITS: Final = {"int32": 32, "int64": 64}


@functools.cache
def arguments(function: str) -> tuple[Argument, ...]:
    """The arguments of a C function as this binding passes them."""
    rows = API[function][1].split(", ") if API[function][1] else []
    return tuple(Argument(*row.split()) for row in rows)


def library_path() -> str:
    """The library to load where none is given: what the environment variable CORVALE_LIBRARY names,
    or else libCorvale.so.9 beside this file, or else from where the system looks."""
    beside = pathlib.Path(__file__).with_name("libCorvale.so.9")
    own = str(beside) if beside.exists() else beside.name
    return os.environ.get("CORVALE_LIBRARY") or own


class Values(NamedTuple):
    """One of every kind of argument, for the self-tests; `ch` is one character of code 0 to 255."""

    ch: str
    i: int
    l: int  # noqa: E741  (the name that it has in C)
    d: float
    text: str
    i3: tuple[int, ...]
    l3: tuple[int, ...]
    d3: tuple[float, ...]
    i6: tuple[int, ...]
    l6: tuple[int, ...]
    d6: tuple[float, ...]


class Corvale:
    """The loaded library; it stays loaded.

    File names, messages and texts are refused with ValueError, before the call, when the library
    would take something else: characters outside codes 32 to 126, too many of them (512, messages
    128), a blank in front of a file name or message. An integer that does not fit its 32 or 64 bits
    is an OverflowError, an array of another length a ValueError.
    """

    def __init__(self, library: StrPath | None = None) -> None:
        """Loads `library`, or what `library_path` says. OSError says why it cannot be loaded."""
        path = os.fspath(library or library_path())
        loaded = ctypes.CDLL(path, mode=ctypes.RTLD_LOCAL)
        try:
            self._functions = {name: _declared(loaded[name], name) for name in API}
        except AttributeError as lacking:
            raise OSError(f"{path}: {lacking}") from None

    def init(self) -> None:
        """CorvaleInit: does nothing, the library is ready once it is loaded."""
        self._check("CorvaleInit")

    def info(self) -> str:
        """CorvaleGetInfo: name, version, build date, platform and compiler of the library."""
        return str(self._one("CorvaleGetInfo"))

    def init_dll_names(self) -> str:
        """GetInitDllNames: the libraries that have to be initialised first, none."""
        return str(self._one("GetInitDllNames"))

    def open_log_file(self, name: StrPath) -> None:
        """OpenLogFile: opens the log, created or emptied; from then on every message is also a line
        of it. CorvaleFileError if it cannot be opened."""
        self._open("OpenLogFile", os.fspath(name))

    def close_log_file(self) -> None:
        """CloseLogFile: closes the log, if one is open, and blanks the last error message."""
        self._call("CloseLogFile")

    def log_message(self, message: str) -> None:
        """LogMessage: stores an informational message of up to 128 characters, also in the log."""
        self._call("LogMessage", _not_indented(message))

    def last_error_message(self) -> str:
        """GetLastErrMsg: the last error message; it stays until the next or close_log_file."""
        return str(self._one("GetLastErrMsg"))

    def last_info_message(self) -> str:
        """GetLastInfoMsg: the last informational message."""
        return str(self._one("GetLastInfoMsg"))

    @property
    def dup_key_mode(self) -> int:
        """GetDupKeyMode, SetDupKeyMode: the duplication key mode, 0 or 1; CorvaleError for others."""
        return self._call("GetDupKeyMode")[0]

    @dup_key_mode.setter
    def dup_key_mode(self, mode: int) -> None:
        self._check("SetDupKeyMode", mode)

    @property
    def all_key_mode(self) -> int:
        """GetAllKeyMode, SetAllKeyMode: the all-key mode, 0 or 1; CorvaleError for others."""
        return self._call("GetAllKeyMode")[0]

    @all_key_mode.setter
    def all_key_mode(self, mode: int) -> None:
        self._check("SetAllKeyMode", mode)

    def reset_all_key_mode(self) -> None:
        """ResetAllKeyMode: sets the all-key and the duplication key mode back to 0."""
        self._call("ResetAllKeyMode")

    @property
    def elset_key_mode(self) -> int:
        """GetElsetKeyMode, SetElsetKeyMode: the element-set key mode, 0 or 1; CorvaleError for
        others."""
        return self._call("GetElsetKeyMode")[0]

    @elset_key_mode.setter
    def elset_key_mode(self, mode: int) -> None:
        self._check("SetElsetKeyMode", mode)

    def load_file(self, name: StrPath) -> None:
        """CorvaleLoadFile: reads the cards of an input file. CorvaleFileError when it cannot be
        opened, never for what it holds."""
        self._open("CorvaleLoadFile", os.fspath(name))

    def moic_data(self, count: int = 128) -> tuple[float, ...]:
        """GetMOICData: the first `count` values of the array that QZ_MOIC cards fill; for more than
        128 the library gives that many zeros."""
        if count < 0:
            raise ValueError(f"count {count} is negative")
        return tuple(self._one("GetMOICData", count))

    def test_interface(self, values: Values) -> Values:
        """TestInterface: gives every value back as it arrived in the library."""
        return Values(*self._call("TestInterface", *values)[1])

    def test_interface2(self, values: Values) -> Values:
        """TestInterface2: gives every value changed by a fixed amount; integers wrap."""
        return Values(*self._call("TestInterface2", *values)[1])

    def test_interface3(
        self, i3: tuple[int, ...], i6: tuple[int, ...]
    ) -> tuple[tuple[int, ...], tuple[int, ...]]:
        """TestInterface3: 4 times `i3` and 5 times `i6`; products wrap."""
        fourfold, fivefold = self._call("TestInterface3", i3, i6)[1]
        return fourfold, fivefold

    def _call(self, name: str, *given: Any) -> tuple[int, list[Any]]:
        """Result and outputs of a function; `given` are the arguments that go in."""
        with _one_at_a_time:
            return self._call_alone(name, *given)

    def _call_alone(self, name: str, *given: Any) -> tuple[int, list[Any]]:
        rest = iter(given)
        counts: dict[str, int] = {}
        passed, outputs = [], []
        for argument in arguments(name):
            value = next(rest) if "in" in argument.way else None
            width = counts[argument.width] if argument.width in counts else int(argument.width)
            buffer = _filled(argument, width, value)
            if _by_value(argument):
                counts[argument.name] = value
                passed.append(buffer[0])
                continue
            passed.append(buffer)
            if "out" in argument.way:
                outputs.append((argument, buffer))
        result = self._functions[name](*passed)
        return result, [_taken(argument, buffer) for argument, buffer in outputs]

    def _one(self, name: str, *given: Any) -> Any:
        """The only output of a function."""
        return self._call(name, *given)[1][0]

    def _check(self, name: str, *given: Any) -> None:
        """A call with a status; the reason is read before another thread can fail."""
        with _one_at_a_time:
            if self._call_alone(name, *given)[0] != 0:
                raise CorvaleError(self._call_alone("GetLastErrMsg")[1][0])

    def _open(self, function: str, name: str) -> None:
        """A call that opens a file."""
        try:
            self._check(function, _not_indented(name))
        except CorvaleError as failure:
            code = _why_unreadable(name) if function == "CorvaleLoadFile" else None
            raise CorvaleFileError(str(failure), code, name) from None


# A handler of signals may call in between, so a thread may take it twice. Held while the process
# forks, so that a child never inherits it locked.
_one_at_a_time: Final = threading.RLock()
os.register_at_fork(
    before=_one_at_a_time.acquire,
    after_in_parent=_one_at_a_time.release,
    after_in_child=_one_at_a_time.release,
)


def _why_unreadable(name: str) -> int | None:
    """The system's reason, which the library does not tell. A backslash is a slash for it."""
    path = name.rstrip(" ").replace("\\", "/")
    try:
        os.close(os.open(path, os.O_RDONLY | os.O_NONBLOCK | os.O_CLOEXEC | os.O_NOCTTY))
    except OSError as why:
        return why.errno
    return errno.EISDIR if os.path.isdir(path) else None


def _by_value(argument: Argument) -> bool:
    return argument.way == "in" and argument.width == "1"


def _declared(function: Any, name: str) -> Any:
    """`function` with the C types of its table row: ctypes then refuses any other buffer."""
    function.restype = ctypes.c_int32 if API[name][0] == "int32" else None
    function.argtypes = [_c_type(argument) for argument in arguments(name)]
    return function


def _c_type(argument: Argument) -> Any:
    element = _C_TYPES[argument.kind]
    if _by_value(argument):
        return element
    return element * int(argument.width) if argument.width.isdigit() else ctypes.POINTER(element)


def _filled(argument: Argument, width: int, value: Any) -> Any:
    """A new array of `width` elements that holds `value`; zeros for None."""
    array_type = _C_TYPES[argument.kind] * width
    if value is None:
        return array_type()
    if argument.kind == "text":
        return array_type.from_buffer_copy(_padded(value, width))
    elements = (value,) if width == 1 else tuple(value)
    if len(elements) != width:
        raise ValueError(f"{argument.name} has {len(elements)} elements, not {width}")
    return array_type(*(_element(argument, element) for element in elements))


def _element(argument: Argument, value: Any) -> Any:
    if argument.kind == "real64":
        return float(value)
    if argument.kind == "char":
        return value.encode("latin-1")
    number, limit = operator.index(value), 1 << (_BITS[argument.kind] - 1)
    if not -limit <= number < limit:
        raise OverflowError(f"{argument.name}: {number} does not fit {argument.kind}")
    return number


def _padded(text: str, width: int) -> bytes:
    """`text` in a full buffer; refused when the library would not see all of it."""
    for place, character in enumerate(text):
        if not " " <= character <= "~":
            raise ValueError(f"{text!r}: character {place + 1} is not printable ASCII")
    if len(text) > width:
        raise ValueError(f"{text!r}: {len(text)} characters, {width} fit")
    return text.encode("ascii").ljust(width)


def _not_indented(text: str) -> str:
    if text.startswith(" "):
        raise ValueError(f"{text!r} begins with a blank, which the library would drop")
    return text


def _taken(argument: Argument, buffer: Any) -> Any:
    """What an array holds: a text without the blanks that fill it, one value, or a tuple."""
    if argument.kind == "text":
        return buffer.raw.rstrip(b" ").decode("latin-1")
    if argument.kind == "char":
        return buffer.raw.decode("latin-1")
    return buffer[0] if argument.width == "1" else tuple(buffer)
