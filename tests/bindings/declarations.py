"""What each binding has to declare, written from the table, beside what its source declares.

    declarations.py    compares those of all bindings; prints a difference and ends with 1
"""
import difflib
import pathlib
import re
import sys

BINDINGS = pathlib.Path(__file__).resolve().parents[2] / "bindings"
sys.dont_write_bytecode = True
sys.path.insert(0, str(BINDINGS))
import interface  # noqa: E402


def types(char, int32, int64, real64):
    """The name of each type of the table in a language."""
    return {"char": char, "text": char, "int32": int32, "int64": int64, "real64": real64, "void": "void"}


C = types("char", "int32_t", "int64_t", "double")
JAVA = types("byte", "int", "long", "double")
RUST = types("u8", "i32", "i64", "f64")
ADA = dict(types("Character", "Int32", "Int64", "Real64"), text="Text")
FORTRAN = types("character(kind=c_char)", "integer(c_int32_t)", "integer(c_int64_t)", "real(c_double)")


def listed(function, argument, separator=", "):
    return separator.join(argument(a) for a in function.arguments)


def row(a):
    return f"{a.name} {a.kind} {a.width} {a.way}"


def c_argument(a):
    if a.by_value():
        return f"{C[a.kind]} {a.name}"
    return f"{'const ' * (a.way == 'in')}{C[a.kind]} {a.name}[{a.width.replace('count', '')}]"


def c_arguments(f):
    return listed(f, c_argument) or "void"


def ada(f):
    def argument(a):
        width = {"1": "", "count": "_Array"}.get(a.width, f"_{a.width}")
        return f"{a.name} : {a.way.replace('inout', 'in out')} {ADA[a.kind]}{width}"
    arguments = f"({listed(f, argument, '; ')})" if f.arguments else ""
    head, end = ("procedure", "") if f.result == "void" else ("function", "return Int32")
    return f"type {f.name}_Call is access {head} {arguments} {end} with Convention => C;"


def csharp(f):
    def argument(a):
        if a.width == "1" and a.kind != "text":
            return f"{ {'in': '', 'out': 'out', 'inout': 'ref'}[a.way]} {JAVA[a.kind]} {a.name}"
        way = {"in": "In", "out": "Out", "inout": "In, Out"}[a.way]
        width = "" if a.width == "count" else f", Width({a.width})"
        return f"[{way}{width}] {JAVA[a.kind]}[] {a.name}"
    return f"public delegate {JAVA[f.result]} {f.name}({listed(f, argument)});"


def fortran(f):
    def argument(a):
        value = ", value" if a.by_value() else ""
        shape = "" if a.width == "1" else f"({a.width})"
        return f"{FORTRAN[a.kind]}{value}, intent({a.way}) :: {a.name}{shape} "
    kind, result, declared = "subroutine", "", ""
    if f.result == "int32":
        name = "mode" if f.name.startswith("Get") else "status"
        kind, result, declared = "function", f"result({name})", f"{FORTRAN['int32']} :: {name} "
    return (f"{kind} {f.name}({listed(f, lambda a: a.name)}) bind(C) {result} "
            f"{listed(f, argument, '')}{declared}end {kind}\n")


def go(f):
    return f"F({C[f.result]}, {f.name}, ({c_arguments(f)}), ({listed(f, lambda a: a.name)}))\n"


def java(f):
    def argument(a):
        if a.by_value():
            return f"{JAVA[a.kind]} {a.name}"
        way = {"in": "In", "out": "Out", "inout": "InOut"}[a.way]
        return f"@{way}({a.width.replace('count', '0')}) {JAVA[a.kind]}[] {a.name}"
    return f"{JAVA[f.result]} {f.name}({listed(f, argument)});"


def javascript(f):
    def argument(a):
        return f", ['{a.name}', '{a.kind}', {a.width.replace('count', repr('count'))}, '{a.way}']"
    return f"{f.name}: ['{f.result}'{listed(f, argument, '')}],"


def lua(f):
    return f"{C[f.result]} {f.name}({c_arguments(f)});"


def octave(f):  # the compiler takes the types from the C header
    returns = "Nothing" if f.result == "void" else "Mode" if f.name.startswith("Get") else "Status"
    rows = listed(f, lambda a: f"{a.name} {a.width} {a.way}", " ")
    rows = f', "{rows}"' if rows else ""
    return f'Row<decltype({f.name})>("{f.name}", Returns::{returns}{rows}),'


def perl(f):
    return f"{f.name} => ['{f.result}'{listed(f, lambda a: f', [qw({row(a)})]', '')}],"


def python(f):
    return f'"{f.name}": ("{f.result}", "{listed(f, row)}"),'


def r(f):
    return f"F({C[f.result]}, {f.name}, ({c_arguments(f)}))\n"


def ruby(f):
    return f"{f.name}: ['{f.result}'{listed(f, lambda a: f', %w[{row(a)}]', '')}],"


def rust(f):
    def argument(a):
        reference = "&" if a.way == "in" else "&mut "
        if a.by_value():
            return f"{a.name}: {RUST[a.kind]}"
        if a.width == "count":
            return f"{a.name}: *mut {RUST[a.kind]}"
        return f"{a.name}: {reference}" + (RUST[a.kind] if a.width == "1" else f"[{RUST[a.kind]}; {a.width}]")
    return f"fn {f.name}({listed(f, argument)}){'' if f.result == 'void' else ' -> i32'};"


# Of each language: how it declares a function, and where: the file, what stands before the first
# declaration and after the last.
SOURCES = {
    "ada": (ada, "ada/corvale-api.ads", "package Corvale.Api is", "CorvaleInit      :"),
    "csharp": (csharp, "csharp/Api.cs", "class Api\n    {", "private readonly Dictionary"),
    "fortran": (fortran, "fortran/src/corvale_api.f90", "abstract interface", "end interface"),
    "go": (go, "go/api.h", "#define API(F)", "#define POINTER"),
    "java": (java, "java/corvale/Api.java", "@interface InOut {\n        int value();\n    }", "}"),
    "javascript": (javascript, "javascript/declarations.js", "DECLARATIONS = {", "};"),
    "lua": (lua, "lua/corvale.lua", "DECLARATIONS = [[", "]]"),
    "octave": (octave, "octave/corvale_mex.cpp", "std::vector<Function> api = {", "};"),
    "perl": (perl, "perl/lib/Corvale.pm", "%DECLARATIONS = (", "\n);"),
    "python": (python, "python/corvale/capi.py", "API: Final = {", "\n}"),
    "r": (r, "r/src/api.h", "#define API(F)", "/* clang-format on"),
    "ruby": (ruby, "ruby/lib/corvale/api.rb", "DECLARATIONS = {", "}.freeze"),
    "rust": (rust, "rust/src/api.rs", "\napi! {", "\n}"),
}


def words(text):
    """What counts of declarations: neither the layout nor, in Fortran, what is imported."""
    text = re.sub(r"^\s*import ::.*$|[\\&]$", "", text, flags=re.M)  # `\` and `&` go on in the next line
    text = re.sub(r'"\s*\n\s*"', "", text)  # one literal in two lines
    return [word for word in re.findall(r"\w+|[^\w\s]", text) if word != ","]


def check(language):
    """How many arguments of the table the binding declares; ends the program at a difference."""
    declare, path, begin, end = SOURCES[language]
    source = (BINDINGS / path).read_text()
    first = source.index(begin) + len(begin)
    have, want = words(source[first:source.index(end, first)]), []
    functions = interface.read()
    for function in functions:
        want += words(declare(function))
    if language == "ada":  # where upper and lower case are the same
        have, want = ([word.lower() for word in each] for each in (have, want))
    if have != want:
        sys.exit(f"{path} is not what interface.txt asks for (-: to go, +: to come):\n" + "\n".join(
            difflib.unified_diff(have, want, n=2, lineterm="")))
    return sum(len(function.arguments) for function in functions)


if __name__ == "__main__":
    for each in SOURCES:
        check(each)
