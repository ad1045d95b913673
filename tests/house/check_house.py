#!/usr/bin/env python3
"""Checks the rules of the tree: prints every fault and ends with 1 if there is one.

    check_house.py SOURCE            layers, installed headers, comments, versions
    check_house.py SOURCE LIBRARY    what the built libCorvale.so exports, too
    check_house.py --headers SOURCE  only prints the list of installed headers
"""
import concurrent.futures
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

# An include stays in its folder or goes to one of a lower layer.
LAYERS = {"tools": 5, "bindings": 5, "bench": 5, "exports": 4, "core": 3, "numeric": 2,
          "text": 1, "sorting": 1, "platform": 1, "base": 0}
HOLDS_BODIES = {"numeric/Views.hpp"}
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wshadow", "-Werror"]

# When a declaration calls for a label: a pattern that its result and arguments match.
TEXT, ARRAY = r"string_view|span<(?:const )?char|array<char", r"(?:Matrix|Vector)View<|double\*|int\d+_t\*|Key\*"
LABELS = {
    "Units": r"[(,] *(?:double|const Vector3&) \w",
    "Width": TEXT,
    "Shape": ARRAY,
    "Bad input": r"\([^)]",
    "Aliasing": rf"^(?=.*(?:{TEXT}|{ARRAY}).*(?:{TEXT}|{ARRAY})).*"
                r"(?:[(,] *(?:std::)?span<char|View<double>|[(,] *(?:double|char|std::int\d+_t|Key)\*)",
    "Threads": r"",
    "Exactness": r"^(?:double|Vector3) |double& ",
}

faults = []


def fault(text):
    faults.append(text)


def installed_headers(source):
    lists = (source / "corvale/CMakeLists.txt").read_text()
    return re.search(r"set\(CORVALE_PUBLIC_HEADERS(.*?)\)", lists, re.S)[1].split()


def folder_of(path):
    """Of a file below corvale/, the folder that is a layer."""
    return path.split("/")[0] if "/" in path else "exports"  # Corvale.h


def check_includes(source):
    for folder in ("corvale", "tools", "bindings", "bench"):
        for file in sorted((source / folder).rglob("*.[ch]*")):
            layer = folder_of(str(file.relative_to(source / "corvale"))) if folder == "corvale" else folder
            if layer not in LAYERS:
                fault(f"{file}: no folder of a layer")
                continue
            for included in re.findall(r"#include <corvale/([^>]+)>", file.read_text()):
                other = folder_of(included)
                if other != layer and LAYERS.get(other, 9) >= LAYERS[layer]:
                    fault(f"{file}: {layer} includes {included}, which is in no lower layer")


def check_internal_headers(source, headers):
    for header in sorted((source / "corvale").rglob("*.h*")):
        start = header.read_text()[:300]
        if str(header.relative_to(source / "corvale")) not in headers and (
                "Internal" not in start or "not installed" not in start):
            fault(f"{header}: does not say that it is internal and not installed")


def without_comments(text):
    return re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.S)


def check_declares_only(name, text):
    code = without_comments(text)
    if re.search(r"\)\s*(?:const\s*|noexcept\s*|CORVALE_NOEXCEPT\s*|->[^;{]*)*\{", code):
        fault(f"{name}: holds a function's body")
    if re.search(r"^\s*#\s*define\s+\w+\(", code, re.M):
        fault(f"{name}: defines a macro with arguments")


def declarations(text):
    """Each line with CORVALE_API: its number, its comment, its code up to the ; or {."""
    lines = text.split("\n")
    for number, line in enumerate(lines):
        if "CORVALE_API" not in without_comments(line) or line.startswith("#"):
            continue
        first = number
        while first > 0 and re.match(r"\s*(//|/?\*|\[\[|template)", lines[first - 1]):
            first -= 1
            if "///<" in lines[first] or lines[first].lstrip().startswith("/*"):
                break
        comment = "\n".join(l for l in lines[first:number] if re.match(r"\s*(///|/?\*)", l))
        comment += line[line.find("///<"):] if "///<" in line else ""
        code = without_comments("\n".join(lines[number:number + 20]))
        yield number + 1, comment, " ".join(re.match(r"[^;{]*", code)[0].split())


def has_label(comment, label):
    return re.search(rf"^\s*(?:///?|\*) *{label}\s\s", comment, re.M) is not None


def check_comments(name, text):
    head = re.match(r"(?:\s*(?://[^\n]*\n|/\*.*?\*/))+", text, re.S)
    head = head[0] if head else ""
    if not head:
        fault(f"{name}: does not begin with a comment")
    for number, comment, code in declarations(text):
        if not comment:
            fault(f"{name}:{number}: no comment above: {code}")
        if name.endswith(".h") or "(" not in code or "class" in code:
            continue
        signature = re.sub(r"\[\[nodiscard\]\]|CORVALE_API", "", code).strip()
        for label, pattern in LABELS.items():
            if re.search(pattern, signature) and not has_label(head + comment, label):
                fault(f"{name}:{number}: no label {label}: {signature}")


def check_compiles(headers):
    """Each header alone, as C++20, also with what hosts ask for; .h as C99 and C++11 too; the C examples."""
    source = headers["root"]
    cxx = [c for c in ("g++", "clang++") if c == "g++" or shutil.which(c)]
    runs = []
    for name in headers["names"]:
        for compiler in cxx:
            for extra in ([], ["-ffast-math", "-fno-exceptions", "-fno-rtti"]):
                runs.append((name, [compiler, "-std=c++20", "-xc++", *extra], f"#include <corvale/{name}>\n"))
        if name.endswith(".h"):
            flags = ["-std=c99", "-pedantic", "-Wstrict-prototypes", "-xc"]
            code = f"#include <corvale/{name}>\nextern int notEmpty;\n"
            runs += [(name, ["gcc", *flags], code), (name, ["g++", "-std=c++11", "-xc++"], code)]
    runs.append(("the examples of the C API", ["gcc", "-std=c99", "-Wno-unused", "-xc"],
                 c_examples((source / "corvale/exports/CorvaleDllExports.h").read_text())))

    def run(job):
        name, command, code = job
        result = subprocess.run([*command, *WARNINGS, f"-I{source}", "-fsyntax-only", "-"],
                                input=code, capture_output=True, text=True)
        return None if result.returncode == 0 else f"{name}: {' '.join(command)}:\n{result.stderr}"

    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        faults.extend(message for message in pool.map(run, runs) if message)


def c_examples(text):
    """One C function for each example: the last paragraph of a comment, indented by five blanks."""
    code = "#include <corvale/Corvale.h>\n#include <stdio.h>\n"
    for number, comment, declaration in declarations(text):
        lines = re.findall(r"^ \*     (.*)$", comment.rpartition("\n *\n")[2], re.M)
        if not lines:
            fault(f"CorvaleDllExports.h:{number}: no example: {declaration}")
        code += f"int Example{number}(void);\nint Example{number}(void) {{\n" + "\n".join(lines) + "\nreturn 0;\n}\n"
    return code


def check_versions(source):
    header = (source / "corvale/exports/CorvaleDllExports.h").read_text()
    version = re.search(r"VERSION (\d+\.\d+\.\d+)", (source / "CMakeLists.txt").read_text())[1]
    numbers = [re.search(rf"CORVALE_VERSION_{n} (\d+)", header)[1] for n in ("MAJOR", "MINOR", "PATCH")]
    nodes = set(re.findall(r"^(CORVALE_\w+) \{", (source / "corvale/Corvale.map").read_text(), re.M))
    if ".".join(numbers) != version or f'CORVALE_VERSION "{version}"' not in header:
        fault(f"CorvaleDllExports.h: version macros differ from {version} of CMakeLists.txt")
    if nodes != {f"CORVALE_C_{numbers[0]}", f"CORVALE_CXX_{numbers[0]}"}:
        fault(f"Corvale.map: version nodes {nodes}")
    return nodes


def check_exports(source, library, nodes):
    header = (source / "corvale/exports/CorvaleDllExports.h").read_text()
    wanted = set(re.findall(r"CORVALE_API \w+ (\w+)\(", header))
    if len(wanted) != 20:
        fault(f"CorvaleDllExports.h: {len(wanted)} functions, not 20")
    listing = subprocess.run(["nm", "-DC", "--defined-only", library], check=True,
                             capture_output=True, text=True).stdout
    plain = set()
    for line in listing.splitlines():
        kind, symbol = line.split(None, 2)[1:]
        name, _, node = symbol.partition("@@")
        if kind == "A" and name in nodes:
            continue
        if node.startswith("CORVALE_C_"):
            plain.add(name)
        elif not node.startswith("CORVALE_CXX_") or not re.match(r"corvale::(?!internal)", name):
            fault(f"{library}: exports {symbol}")
    if plain != wanted:
        fault(f"{library}: plain names differ from the C API: {sorted(plain ^ wanted)}")


def check_hardened(library):
    """Imports are bound before the first call, and stack arrays are guarded."""
    wanted = {"BIND_NOW": ["readelf", "-dW", library], "__stack_chk_fail": ["nm", "-D", library]}
    for mark, command in wanted.items():
        if mark not in subprocess.run(command, check=True, capture_output=True, text=True).stdout:
            fault(f"{library}: not hardened, no {mark}")


def check_fuzzed(source, names):
    """Every public procedure stands in the table that tells which fuzz target calls it."""
    table = set(re.findall(r"`(\w+)`", (source / "fuzz/README.md").read_text()))
    for name in names:
        for _, _, code in declarations((source / "corvale" / name).read_text()):
            procedure = re.search(r"(\w+)\(", code)
            if procedure and procedure[1] not in table:
                fault(f"fuzz/README.md: no target for {procedure[1]}")


def main(arguments):
    if arguments[0] == "--headers":
        print("\n".join(installed_headers(pathlib.Path(arguments[1]))))
        return 0
    source = pathlib.Path(arguments[0])
    names = installed_headers(source)
    check_includes(source)
    check_internal_headers(source, names)
    for name in names:
        text = (source / "corvale" / name).read_text()
        if name not in HOLDS_BODIES:
            check_declares_only(name, text)
        check_comments(name, text)
    check_compiles({"root": source, "names": names})
    check_fuzzed(source, names)
    nodes = check_versions(source)
    if len(arguments) > 1:
        check_exports(source, arguments[1], nodes)
        check_hardened(arguments[1])
    print("\n".join(faults))
    return 1 if faults else 0


sys.exit(main(sys.argv[1:]))
