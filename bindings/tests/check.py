"""Checks one binding: its declarations beside the table, and what comes of each case.

    check.py LANGUAGE COMMAND...

COMMAND reads the cases from standard input and answers each with a line. A case is a function's C name (or
Open) and what goes in, a blank apart, the elements of arrays a comma apart: i and l before the digits of an
integer of 32 and of 64 bits, r before the 16 hexadecimal digits of a real's bits, c before the code of a
character, x before the bytes of a text in UTF-8, two hexadecimal digits each; n alone is no value. An answer
is one of

    ok VALUE...    what comes out, commas or blanks apart: integers as digits, reals and texts as above,
                   a character as a text of one byte; bytes are Latin-1
    failed TEXT    the language's error for status 2, with its message
    refused        the language's error for a bad argument
    unloaded TEXT  the language's error for a library that cannot be loaded, with its reason
"""
import ast
import math
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile

import declarations

VALUE = re.compile(r'((?:"(?:[^"\\]|\\.)*"(?:\*\d+)?)+|[-+.\w]+(?:\*\d+)?)(,?)\s*')
FUNCTIONS = {function.name: function for function in declarations.interface.read()}
FIELDS = [argument.name for argument in FUNCTIONS["TestInterface2"].arguments]


def of_bits(value):
    return "r" + struct.pack(">d", value).hex()


def of_bytes(text, encoding):
    return "x" + text.encode(encoding).hex()


def token(word, kind):
    """A value as it goes in where the table has that type; of another type only to be refused."""
    if word.startswith('"'):
        pieces = re.findall(r'("(?:[^"\\]|\\.)*")(?:\*(\d+))?', word)
        return of_bytes("".join(ast.literal_eval(text) * int(times or 1) for text, times in pieces), "utf-8")
    if word == "none":
        return "n"
    if re.fullmatch(r"-?\d+L?", word):
        letter = "l" if word.endswith("L") else {"char": "c", "int64": "l"}.get(kind, "i")
        return letter + word.rstrip("L")
    return of_bits(math.nan if word == "nan" else float(word))


def values(text, kinds):
    """Tokens of a list of values, the elements of arrays a comma apart."""
    tokens, goes_on = [], False
    place = 0
    while place < len(text):
        found = VALUE.match(text, place)
        if not found:
            sys.exit(f"cases.txt: no value: {text[place:]}")
        word, comma = found.groups()
        if not goes_on:
            kind = next(kinds)
            tokens.append([])
        times = 1
        if not word.startswith('"') and "*" in word:
            word, times = word.split("*")
        tokens[-1] += [token(word, kind)] * int(times)
        goes_on, place = comma == ",", found.end()
    return [",".join(elements) for elements in tokens]


def said(result):
    """How what comes out is said: as it goes in, but for the letters of integers and characters."""
    kind = result[0]
    if kind == "c":
        return f"x{int(result[1:]):02x}"
    return result[1:] if kind in "il" else result


class Case:
    """A row of the file: what to send, and what has to come of it."""

    def __init__(self, name, given, outcome):
        self.name, self.given, self.outcome = name, given, outcome
        self.says, _, self.text = outcome.partition(" ")
        self.sent = " ".join([name, *given])

    def wanted(self):
        if self.says in ("fails", "begins"):
            return {"fails": "failed ", "begins": "ok "}[self.says] + values(self.text, iter(["text"]))[0]
        if self.says in ("refused", "unloaded"):
            return self.says
        kinds = ["text"]
        if self.name != "Open":
            function = FUNCTIONS[self.name]
            kinds = [a.kind for a in function.arguments if a.way != "in"] or ["int32"]
        if self.outcome in ("done", "uncalled"):
            return "ok"
        flat = ",".join(values(self.outcome, iter(kinds))).split(",")
        return " ".join(["ok", *map(said, flat)])

    def is_right(self, answer):
        answer = answer.replace(",", " ").strip().lower()
        if self.says == "begins":
            return answer.startswith(self.wanted()) and not answer.endswith("20")
        if self.says == "unloaded":  # the reason is the loader's: it names the library or a function
            reason = bytes.fromhex(answer.partition(" x")[2]).decode("utf-8", "replace")
            return answer.startswith("unloaded x") and (
                self.name != "Open" or any(name in reason for name in ["no-such.so", *FUNCTIONS]))
        return answer == self.wanted()

    def calls(self):
        """The lines that the recorder writes."""
        if self.name == "Open" or self.says in ("refused", "unloaded", "uncalled"):
            return []
        arguments = FUNCTIONS[self.name].arguments
        line = f"{self.name} "
        if len(arguments) == 1 and (arguments[0].kind, arguments[0].way) == ("text", "in"):
            width = int(arguments[0].width)
            line += bytes.fromhex(self.given[0][1:])[:width].ljust(width).hex()
        return [line, "GetLastErrMsg "] if self.says == "fails" else [line]


def rows(language, places):
    """The cases that this language runs, and the lines of the log."""
    text = (declarations.BINDINGS / "tests/cases.txt").read_text()
    text = re.sub(r'^((?:"(?:[^"\\]|\\.)*"|[^"#\n])*)#.*$', r"\1", text, flags=re.M)
    for name, path in places.items():
        text = text.replace(f"{{{name}}}", path)
    cases, log, runs, last = [], [], True, {}
    for line in re.sub(r"\n +", " ", text).splitlines():
        names, _, rest = line.strip().partition(" ")
        if names == "in":
            which, _, excepted = rest.partition(" but ")
            runs = which.strip() == "all" or language in which.split()
            runs = runs and language not in excepted.split()
        elif names == "log":
            log += values(rest, iter(["text"]))
        elif names:
            given, _, outcome = rest.rpartition("->")
            for name in names.split("/"):
                into = [a for a in FUNCTIONS[name].arguments if a.way != "out"] if name != "Open" else []
                changed = re.match(r"(\w+)=", given)
                if not changed:
                    tokens = last[len(into)] = values(given.strip(), iter([a.kind for a in into] or ["text"]))
                else:
                    place = FIELDS.index(changed[1])
                    tokens = list(last[len(into)])
                    tokens[place] = values(given[changed.end():].strip(), iter([into[place].kind]))[0]
                if runs:
                    cases.append(Case(name, tokens, outcome.strip()))
    return cases, log


def differences(cases, log, answers, calls, places):
    """What differs from the file, a line each."""
    if len(answers) != len(cases):
        yield f"{len(answers)} answers to {len(cases)} cases; the last: {answers[-1:]}"
    for case, answer in zip(cases, answers):
        if not case.is_right(answer):
            yield f"{case.sent[:200]}: {answer[:200]}; wanted: {case.wanted()[:200]}"
    wanted = [call for case in cases for call in case.calls()]
    if calls != wanted:
        at = next((k for k, pair in enumerate(zip(calls, wanted)) if pair[0] != pair[1]), min(len(calls), len(wanted)))
        yield f"call {at + 1} of the library: {calls[at:at + 2]}; wanted: {wanted[at:at + 2]}"
    content = pathlib.Path(places["log"]).read_text() if os.path.exists(places["log"]) else ""
    lines = "".join(bytes.fromhex(line[1:]).decode() + "\n" for line in log)
    if content != lines:
        yield f"the log holds {content!r}; wanted: {lines!r}"


def main():
    language, command = sys.argv[1], sys.argv[2:]
    checked = declarations.check("javascript" if language == "wasm" else language)
    with tempfile.TemporaryDirectory(prefix="corvale-") as folder:
        places = {"folder": folder, "log": f"{folder}/run.log", "input": os.environ["CORVALE_INPUT"]}
        cases, log = rows(language, places)
        calls = pathlib.Path(folder, "calls")
        run = subprocess.run(command, input="".join(f"{case.sent}\n" for case in cases), text=True,
                             stdout=subprocess.PIPE, env=dict(os.environ, CORVALE_CALLS=str(calls)))
        called = calls.read_text().splitlines() if calls.exists() else []
        faults = list(differences(cases, log, run.stdout.splitlines(), called, places))
    functions = {line.split()[0] for line in called}
    if run.returncode != 0:
        faults.append(f"ended with status {run.returncode}")
    if functions != set(FUNCTIONS):
        faults.append(f"called or in the table, but not both: {functions ^ set(FUNCTIONS)}")
    if faults:
        sys.exit("\n".join(faults))
    print(f"{language}: {len(functions)} of {len(FUNCTIONS)} functions called, {checked} arguments checked, "
          f"{len(cases)} cases, ok")


main()
