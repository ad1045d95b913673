"""Checks one binding: its declarations beside the table, and what comes of each case of cases.txt.

    check.py LANGUAGE COMMAND...

COMMAND reads the cases from standard input and answers each with a line. A case is a function's C name (or
Open) and what goes in, a blank apart, the elements of arrays a comma apart: i and l before the digits of an
integer of 32 and of 64 bits, r before the 16 hexadecimal digits of a real's bits, c before the code of a
character, x before the bytes of a text in UTF-8, two hexadecimal digits each; n alone is no value. An answer
is one of

    ok VALUE...    what comes out, commas or blanks apart: integers as digits, reals and texts as above,
                   a character as a text of one byte; bytes are Latin-1
    failed TEXT    the language's error for status 2, with its message
    refused        the language's usual error for a bad argument; before the name of another one's class
    unloaded TEXT  the language's error for a library that cannot be loaded, with its reason
"""
import ast
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile

import declarations

TEXT = r'"(?:[^"\\]|\\.)*"'
FUNCTIONS = {function.name: function for function in declarations.interface.read()}
FIELDS = [argument.name for argument in FUNCTIONS["TestInterface2"].arguments]


def tokens(element, kind):
    """An element of the file as it goes in where the table has that type."""
    if element.startswith('"'):
        pieces = re.findall(rf"({TEXT})(?:\*(\d+))?", element)
        text = "".join(ast.literal_eval(piece) * int(times or 1) for piece, times in pieces)
        return ["x" + text.encode().hex()]
    value, _, times = element.partition("*")
    if value == "none":
        token = "n"
    elif re.fullmatch(r"-?\d+L?", value):
        letter = {"char": "c", "int64": "l"}.get(kind, "i")
        token = "l" + value[:-1] if value.endswith("L") else letter + value
    else:
        token = "r" + struct.pack(">d", float(value)).hex()
    return [token] * int(times or 1)


def values(text, kinds):
    """All values of a line, the elements of arrays a comma apart."""
    words = re.findall(rf'(?:{TEXT}|[^\s"])+', text)
    if len(words) != len(kinds):
        sys.exit(f"cases.txt: not {len(kinds)} values: {text}")
    return [",".join(token for element in re.findall(rf'(?:{TEXT}|[^,"])+', word) for token in tokens(element, kind))
            for word, kind in zip(words, kinds)]


def answered(tokens_in):
    """Values that come out as an answer has them: integers without a letter, characters as a text."""
    letters = {"i": "", "l": ""}
    return [f"x{int(token[1:]):02x}" if token[0] == "c" else letters.get(token[0], token[0]) + token[1:]
            for token in ",".join(tokens_in).split(",")]


class Case:
    """A row of the file for one function: what to send, and what has to come of it."""

    def __init__(self, name, given, outcome):
        self.name, self.given, self.sent = name, given, " ".join([name, *given])
        self.says, _, text = outcome.partition(" ")
        self.error = text.lower()
        if self.says in ("refused", "unloaded"):
            self.answer = outcome.lower()
        elif self.says in ("done", "uncalled"):
            self.answer = "ok"
        elif self.says in ("fails", "begins"):
            self.answer = {"fails": "failed ", "begins": "ok "}[self.says] + values(text, ["text"])[0]
        else:
            kinds = [a.kind for a in FUNCTIONS[name].arguments if a.way != "in"] or ["int32"]
            self.answer = " ".join(["ok", *answered(values(outcome, kinds))])

    def is_right(self, answer):
        answer = answer.replace(",", " ").strip().lower()
        if self.says == "begins":
            return answer.startswith(self.answer) and not answer.endswith("20")
        if self.says == "unloaded":
            return answer.startswith("unloaded x") and self.has_reason(bytes.fromhex(answer[10:]).decode())
        return answer == self.answer

    def has_reason(self, reason):
        """The loader's reason names the library or a function; without Open there is no loader."""
        names = ["no-such.so", *FUNCTIONS]
        return self.error in reason.lower() and (self.name != "Open" or any(name in reason for name in names))

    def calls(self):
        """The lines that recorder.py writes."""
        if self.name == "Open" or self.says in ("refused", "unloaded", "uncalled"):
            return []
        argument, *more = FUNCTIONS[self.name].arguments or [None]
        text = b""
        if argument and not more and (argument.kind, argument.way) == ("text", "in"):
            width = int(argument.width)
            text = bytes.fromhex(self.given[0][1:])[:width].ljust(width)
        return [f"{self.name} {text.hex()}"] + ["GetLastErrMsg "] * (self.says == "fails")


def read(language, places):
    """The cases that this language runs, and the lines of the log."""
    lines = pathlib.Path(__file__).with_name("cases.txt").read_text().splitlines()
    text = "\n".join(re.match(rf'(?:{TEXT}|[^"#])*', line)[0] for line in lines)
    for name, path in places.items():
        text = text.replace(f"{{{name}}}", path)
    cases, log, runs, whole = [], [], True, {}
    for line in re.sub(r"\n +(?=\S)", " ", text).splitlines():
        head, _, rest = line.strip().partition(" ")
        if head == "in":
            among, _, but = rest.partition(" but ")
            runs = among.split()[0] in ("all", language) or language in among.split()
            runs = runs and language not in but.split()
        elif head == "log":
            log += values(rest, ["text"])
        elif head:
            given, _, outcome = rest.rpartition("->")
            for name in head.split("/"):
                case = Case(name, arguments(name, given.strip(), whole), outcome.strip())
                cases += [case] * runs
    return cases, log


def arguments(name, given, whole):
    """What goes in; `whole` keeps that of the last row that had as many arguments."""
    kinds = ["text"] * len(given.split()) if name == "Open" else \
        [a.kind for a in FUNCTIONS[name].arguments if a.way != "out"]
    changed = re.match(r"(\w+)=", given)
    if not changed:
        whole[len(kinds)] = values(given, kinds)
        return whole[len(kinds)]
    place = FIELDS.index(changed[1])
    result = list(whole[len(kinds)])
    result[place:place + 1] = values(given[changed.end():], [kinds[place]])
    return result


def differences(cases, log, answers, calls, written):
    """What is not as the file says, a line each."""
    if len(answers) != len(cases):
        yield f"{len(answers)} answers to {len(cases)} cases; the last: {answers[-1:]}"
    for case, answer in zip(cases, answers):
        if not case.is_right(answer):
            yield f"{case.sent[:200]}: {answer[:200]}; wanted: {case.answer[:200]}"
    wanted = [call for case in cases for call in case.calls()]
    for place, (have, want) in enumerate(zip(calls + [""], wanted + [""])):
        if have != want:
            yield f"call {place + 1} of the library: {have[:200]}; wanted: {want[:200]}"
            break
    lines = "".join(bytes.fromhex(line[1:]).decode() + "\n" for line in log)
    if written != lines:
        yield f"the log holds {written!r}; wanted: {lines!r}"
    functions = {call.split()[0] for call in calls}
    if functions != set(FUNCTIONS):
        yield f"called or in the table, but not both: {', '.join(functions ^ set(FUNCTIONS))}"


def content(path):
    return path.read_text() if path.exists() else ""


def main():
    language, command = sys.argv[1], sys.argv[2:]
    checked = declarations.check("javascript" if language == "wasm" else language)
    with tempfile.TemporaryDirectory(prefix="corvale-") as name:
        folder = pathlib.Path(name)
        log, calls = folder / "run.log", folder / "calls"
        cases, lines = read(language, {"folder": name, "log": str(log), "input": os.environ["CORVALE_INPUT"]})
        run = subprocess.run(command, input="".join(f"{case.sent}\n" for case in cases), text=True,
                             stdout=subprocess.PIPE, env=dict(os.environ, CORVALE_CALLS=str(calls)))
        faults = list(differences(cases, lines, run.stdout.splitlines(), content(calls).splitlines(), content(log)))
    if run.returncode != 0:
        faults.append(f"ended with status {run.returncode}")
    if faults:
        sys.exit("\n".join(faults))
    print(f"{language}: {len(FUNCTIONS)} of {len(FUNCTIONS)} functions called, {checked} arguments checked, "
          f"{len(cases)} cases, ok")


main()
