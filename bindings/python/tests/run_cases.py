"""Answers the cases of tests/bindings/check.py with this binding."""

from __future__ import annotations

import struct
import sys
from typing import Any, Callable

from corvale.capi import Corvale, CorvaleError, Values

DECODE: dict[str, Callable[[str], Any]] = {
    "i": int,
    "l": int,
    "r": lambda bits: struct.unpack(">d", bytes.fromhex(bits))[0],
    "c": lambda code: chr(int(code)),
    "x": lambda text: bytes.fromhex(text).decode(),
    "n": lambda _: None,
}


def decoded(token: str) -> Any:
    elements = [DECODE[element[0]](element[1:]) for element in token.split(",")]
    return tuple(elements) if len(elements) > 1 else elements[0]


def encoded(value: Any) -> str:
    if isinstance(value, tuple):
        return " ".join(map(encoded, value))
    if isinstance(value, str):
        return "x" + value.encode("latin-1").hex()
    return "r" + struct.pack(">d", value).hex() if isinstance(value, float) else str(value)


# Each is called with the library and what goes in.
CALLS: dict[str, Callable[..., Any]] = {
    "CorvaleInit": Corvale.init,
    "CorvaleGetInfo": Corvale.info,
    "GetInitDllNames": Corvale.init_dll_names,
    "OpenLogFile": Corvale.open_log_file,
    "CloseLogFile": Corvale.close_log_file,
    "LogMessage": Corvale.log_message,
    "GetLastErrMsg": Corvale.last_error_message,
    "GetLastInfoMsg": Corvale.last_info_message,
    "GetDupKeyMode": lambda corvale: corvale.dup_key_mode,
    "SetDupKeyMode": lambda corvale, mode: setattr(corvale, "dup_key_mode", mode),
    "GetAllKeyMode": lambda corvale: corvale.all_key_mode,
    "SetAllKeyMode": lambda corvale, mode: setattr(corvale, "all_key_mode", mode),
    "ResetAllKeyMode": Corvale.reset_all_key_mode,
    "GetElsetKeyMode": lambda corvale: corvale.elset_key_mode,
    "SetElsetKeyMode": lambda corvale, mode: setattr(corvale, "elset_key_mode", mode),
    "CorvaleLoadFile": Corvale.load_file,
    "GetMOICData": Corvale.moic_data,
    "TestInterface": lambda corvale, *given: corvale.test_interface(Values(*given)),
    "TestInterface2": lambda corvale, *given: corvale.test_interface2(Values(*given)),
    "TestInterface3": Corvale.test_interface3,
}
corvale: Any = None
for line in sys.stdin:
    name, *tokens = line.split()
    given = [decoded(token) for token in tokens]
    try:
        if name == "Open":
            corvale = Corvale(*given)
            print("ok")
            continue
        result = CALLS[name](corvale, *given)
        print("ok", "" if result is None else encoded(result))
    except CorvaleError as failure:
        print("failed", encoded(str(failure)))
    except (ValueError, TypeError):
        print("refused")
    except OverflowError:
        print("refused OverflowError")
    except OSError as reason:
        print("unloaded", encoded(str(reason)))
