"""Walks the table of the C API and proves that this binding declares and calls all of it."""

from __future__ import annotations

import ctypes
import errno
import os
import pathlib
import pickle
import tempfile
from typing import Any

from corvale.capi import API, Corvale, CorvaleError, CorvaleFileError, Values, arguments

LEAST, GREATEST = -(2**31), 2**31 - 1
LEAST_LONG, GREATEST_LONG = -(2**63), 2**63 - 1
SENTENCE = "It doesn't matter what your string was."
FAILED_LOAD = 'FileOpen: Unable to open file "no such file" for reading.'

GIVEN = Values(
    "\xfe", GREATEST, GREATEST_LONG, 0.1, "  text~",
    (GREATEST, 2, -3), (GREATEST_LONG, 5, -6), (-0.0, 5e-324, 1e308),
    (LEAST, 8, 9, 10, 11, GREATEST), (LEAST_LONG, 14, 15, 16, 17, GREATEST_LONG),
    (0.2, 0.3, 0.4, 0.5, 0.6, 0.7),
)


def check_declarations() -> tuple[set[str], int]:
    """Compares declarations and table; the table's functions and how many arguments agreed."""
    declared: list[tuple[str, ...]] = []
    table: list[tuple[str, ...]] = []
    for name, (result, _) in API.items():
        declared.append(("function", name, result))
        declared.extend(("argument", *argument) for argument in arguments(name))
    for line in pathlib.Path(os.environ["CORVALE_INTERFACE"]).read_text().splitlines():
        if line and not line.startswith("#"):
            table.append(tuple(line.split()))
    for have, want in zip(declared + [()], table + [()]):
        assert have == want, f"declared {have}, in the table {want}"
    return {row[1] for row in table if row[0] == "function"}, len(table) - len(API)


def record_calls(corvale: Corvale) -> set[str]:
    """The names of the C functions, which grow as they are called."""
    called: set[str] = set()

    def recording(name: str, function: Any) -> Any:
        def call(*given: Any) -> Any:
            called.add(name)
            return function(*given)
        return call

    corvale._functions = {n: recording(n, f) for n, f in corvale._functions.items()}
    return called


def check_refused(error: type[Exception], call: Any, *given: Any) -> None:
    try:
        call(*given)
    except error as refusal:
        assert type(refusal) in (error, UnicodeEncodeError), refusal
        return
    raise AssertionError(f"not refused: {given}")


def check_failed(message: str, call: Any, *given: Any) -> None:
    try:
        call(*given)
    except CorvaleError as failure:
        assert str(failure) == message, failure
        return
    raise AssertionError(f"did not fail: {message}")


def modes(corvale: Corvale) -> None:
    for mode, said in (("dup", "DUPLICATION"), ("all", "elset"), ("elset", "elset")):
        setattr(corvale, f"{mode}_key_mode", 1)
        message = f"Set{mode.capitalize()}KeyMode: invalid input value for {said} key mode."
        check_failed(message, setattr, corvale, f"{mode}_key_mode", 2)
        assert corvale.last_error_message() == message
        check_refused(OverflowError, setattr, corvale, f"{mode}_key_mode", 2**32 + 1)
    assert (corvale.dup_key_mode, corvale.all_key_mode, corvale.elset_key_mode) == (1, 1, 1)
    corvale.reset_all_key_mode()
    assert (corvale.dup_key_mode, corvale.all_key_mode, corvale.elset_key_mode) == (0, 0, 1)
    corvale.elset_key_mode = 0


def log(corvale: Corvale) -> None:
    with tempfile.TemporaryDirectory() as folder:
        check_failed("OpenLogFile: log file failed to open.", corvale.open_log_file, folder)
        name = pathlib.Path(folder, "run.log")
        corvale.open_log_file(name)
        corvale.log_message("pass 1 of 3")
        check_failed(FAILED_LOAD, corvale.load_file, "no such file")
        corvale.close_log_file()
        assert name.read_text() == f"{'pass 1 of 3':128}\nError-{FAILED_LOAD}\n"
    assert (corvale.last_info_message(), corvale.last_error_message()) == ("pass 1 of 3", "")


def files(corvale: Corvale) -> None:
    with tempfile.TemporaryDirectory() as folder:
        reasons = {(corvale.load_file, f"{folder}/none"): errno.ENOENT, (corvale.load_file, folder): errno.EISDIR,
                   (corvale.load_file, ""): errno.ENOENT, (corvale.load_file, f"{folder}\\\\none"): errno.ENOENT,
                   (corvale.open_log_file, folder): None}
        for (call, name), reason in reasons.items():
            try:
                call(name)
            except OSError as failure:
                assert isinstance(failure, CorvaleFileError) and str(failure) == corvale.last_error_message()
                assert (failure.errno, failure.filename) == (reason, name), failure.errno
                copy = pickle.loads(pickle.dumps(failure))
                assert (str(copy), copy.errno, copy.filename) == (str(failure), reason, name)
            else:
                raise AssertionError(f"opened: {name}")


def cards(corvale: Corvale) -> None:
    corvale.load_file(os.environ["CORVALE_INPUT"])
    assert (corvale.elset_key_mode, corvale.all_key_mode) == (1, 1)
    values = corvale.moic_data()
    assert values[:3] == (6378.135, 398600.8, 1.0826158e-3) and values[6:9] == (0.25, 0.0, 1e-12)
    assert corvale.moic_data(3) == values[:3] and corvale.moic_data(0) == ()
    assert corvale.moic_data(129) == (0.0,) * 129


def wrapped(value: int, bits: int) -> int:
    return (value + (1 << (bits - 1))) % (1 << bits) - (1 << (bits - 1))


def self_tests(corvale: Corvale) -> None:
    assert repr(corvale.test_interface(GIVEN)) == repr(GIVEN)  # every bit: repr tells -0.0 from 0.0
    assert corvale.test_interface2(GIVEN) == Values(
        "Z", LEAST, LEAST_LONG + 1, 0.1 + 42.123456, SENTENCE,
        tuple(wrapped(i + 1, 32) for i in GIVEN.i3),
        tuple(wrapped(i + 1234567890123456789, 64) for i in GIVEN.l3),
        tuple(d + 42.0 for d in GIVEN.d3),
        tuple(wrapped(i + 1, 32) for i in GIVEN.i6),
        tuple(wrapped(i + 6, 64) for i in GIVEN.l6),
        tuple(d + 7.6 for d in GIVEN.d6),
    )
    products = [tuple(wrapped(n * i, 32) for i in a) for n, a in ((4, GIVEN.i3), (5, GIVEN.i6))]
    assert list(corvale.test_interface3(GIVEN.i3, GIVEN.i6)) == products


def refusals(corvale: Corvale) -> None:
    for name in (" blank", "tab\t", "\u00e9t\u00e9", "del\x7f", "nul\0", "n" * 513, "\udc80"):
        check_refused(ValueError, corvale.load_file, name)
        check_refused(ValueError, corvale.open_log_file, name)
    for message in (" blank", "two\nlines", "m" * 129):
        check_refused(ValueError, corvale.log_message, message)
    check_failed("FileOpen: File name is empty.", corvale.load_file, "")
    corvale.log_message("m" * 128)
    assert corvale.last_info_message() == "m" * 128
    for error, given in (
        (ValueError, GIVEN._replace(ch="\u20ac")),
        (OverflowError, GIVEN._replace(i=GREATEST + 1)),
        (OverflowError, GIVEN._replace(l=LEAST_LONG - 1)),
        (ValueError, GIVEN._replace(text="t" * 513)),
        (ValueError, GIVEN._replace(i3=(1, 2))),
        (ValueError, GIVEN._replace(d6=(1.0,) * 7)),
    ):
        check_refused(error, corvale.test_interface, given)
    check_refused(ValueError, corvale.moic_data, -1)


def main() -> None:
    functions, checked = check_declarations()
    check_refused(OSError, Corvale, "no-such.so")
    check_refused(OSError, Corvale, "libc.so.6")  # no function of ours in it
    corvale = Corvale()
    called = record_calls(corvale)
    corvale.init()
    assert corvale.info().startswith("Arvenit Corvale - Version: v9.4 - Build: ")
    assert corvale.init_dll_names() == ""
    for scene in (modes, log, files, cards, self_tests, refusals):
        scene(corvale)
    assert not hasattr(ctypes.CDLL(None), "CorvaleInit"), "the library's names are global"
    assert called == functions, f"called or in the table, not both: {called ^ functions}"
    print(f"Python: {len(called)} of 20 functions called, {checked} arguments checked, ok")


main()
