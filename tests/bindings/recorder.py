"""Writes a library in C that notes each call and hands it on to libCorvale.

    recorder.py LIBRARY >recorder.c
"""
import json
import sys

from declarations import interface

HEAD = """
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

// Adds a line to the file that CORVALE_CALLS names: the function, the bytes of the text that it was given,
// and first of all `global` if the program sees the names of this library.
static void note(const char* name, const char* text, int width) {
    const char* path = getenv("CORVALE_CALLS");
    if (!path) return;
    FILE* calls = fopen(path, "a");
    if (!calls) abort();
    fprintf(calls, "%s%s ", dlsym(dlopen(NULL, RTLD_LAZY), "CorvaleInit") ? "global " : "", name);
    for (int k = 0; k < width; ++k) fprintf(calls, "%02x", (unsigned char)text[k]);
    fputc('\\n', calls);
    fclose(calls);
}

static void* real(const char* name) {
    void* found = dlsym(dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL), name);
    if (!found) abort();
    return found;
}
"""
# libCorvale has no names to give: without this the width of their buffer would not show.
WIDE = "    memset(names, 'n', 512);\n"


def forward(function):
    head = function.in_c()
    texts = [f"{a.name}, {a.width}" for a in function.arguments if (a.kind, a.way) == ("text", "in")]
    noted = texts[0] if texts and len(function.arguments) == 1 else "NULL, 0"
    passed = ", ".join(argument.name for argument in function.arguments)
    returned = "" if function.result == "void" else "return "
    return (f"\n{head} {{\n    note(\"{function.name}\", {noted});\n"
            f"    {returned}(({head.replace(function.name, '(*)')})real(\"{function.name}\"))({passed});\n"
            f"{WIDE if function.name == 'GetInitDllNames' else ''}}}\n")


print(f"#define LIBRARY {json.dumps(sys.argv[1])}{HEAD}" + "".join(map(forward, interface.read())))
