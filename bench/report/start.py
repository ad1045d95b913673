#!/usr/bin/env python3
"""Measures size and start of the library and writes them down with the machine and the versions.

    start.py BUILD-FOLDER FILE.json [PROCESSES]
"""
import json
import os
import pathlib
import platform
import re
import statistics
import subprocess
import sys
import tempfile

# What a table of versions names: (name, Debian package), or a command's first line.
PACKAGES = {
    "Google Benchmark": "libbenchmark-dev", "OpenBLAS": "libopenblas0-serial",
    "reference LAPACK": "liblapack-dev", "Eigen": "libeigen3-dev", "Boost (pdqsort)": "libboost-dev",
    "spdlog": "libspdlog-dev", "fmt": "libfmt-dev", "double-conversion": "libdouble-conversion-dev",
    "fast_float": "libfast-float-dev", "C library": "libc6", "C++ library": "libstdc++6",
}
COMMANDS = {"GCC": ["g++", "--version"], "gfortran": ["gfortran", "--version"]}


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def versions():
    found = {name: run(*command).splitlines()[0].split()[-1] for name, command in COMMANDS.items()}
    for name, package in PACKAGES.items():
        found[name] = run("dpkg-query", "-W", "-f=${Version}", package)
    return found


def machine():
    cpu = pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8")
    fields = dict(re.findall(r"^(model name|cpu family|model|flags)\s*: (.*)$", cpu, re.M))
    system = re.search(r'PRETTY_NAME="([^"]*)"', pathlib.Path("/etc/os-release").read_text(encoding="utf-8"))
    wide = [name for name in ("avx2", "fma", "avx512f") if name in fields.get("flags", "").split()]
    return {
        "processor": f"{fields.get('model name', platform.machine())}, family {fields.get('cpu family')}, "
                     f"model {fields.get('model')}, {os.cpu_count()} cores",
        "instructions": ", ".join(wide), "caches": caches(),
        "system": f"{system[1]}, Linux {platform.release()}, {platform.machine()}",
        "load": round(os.getloadavg()[2], 1),
    }


def caches():
    folder = pathlib.Path("/sys/devices/system/cpu/cpu0/cache")
    found = []
    for index in sorted(folder.glob("index*")):
        level, kind, size = ((index / name).read_text().strip() for name in ("level", "type", "size"))
        if kind != "Instruction":
            found.append(f"L{level} {size}")
    return ", ".join(found)


def stripped_size(library):
    with tempfile.NamedTemporaryFile() as copy:
        run("strip", "-o", copy.name, str(library))
        return os.path.getsize(copy.name)


def anatomy(library):
    """What the dynamic loader has to do for it."""
    relocations = run("readelf", "-rW", str(library))
    dynamic = run("readelf", "-dW", str(library))
    array = re.search(r"INIT_ARRAYSZ\)\s+(\d+)", dynamic)
    return {
        "stripped": stripped_size(library),
        "relative relocations": len(re.findall(r"_RELATIVE\b", relocations)),
        "other relocations": len(re.findall(r"R_\w+_(?:GLOB_DAT|JUMP_SLO|JUMP_SLOT|64|ABS64|DTPMOD64|TPOFF64|IRELATIVE)\b",
                                            relocations)),
        # The one that the compiler's own start files bring is in every library.
        "initialisers": int(array[1]) // 8 - 1 if array else 0,
        "needs": ", ".join(re.findall(r"NEEDED\).*\[(?:lib)?([^\].]+)", dynamic)),
    }


def starts(program, libraries, processes):
    """Fresh processes, one library after the other: nanoseconds, resident and shared-out bytes."""
    seen = {name: [] for name in libraries}
    for _ in range(processes):
        for name, (library, function) in libraries.items():
            seen[name].append([float(word) for word in run(str(program), str(library), function).split()[:3]])
    found = {}
    for name, rows in seen.items():
        times, resident, shared = zip(*rows)
        found[name] = {"times": times, "resident": statistics.median(resident),
                       "shared": statistics.median(shared)}
    return found


def main():
    build, target = pathlib.Path(sys.argv[1]), sys.argv[2]
    processes = int(sys.argv[3]) if len(sys.argv) > 3 else 301
    libraries = {
        "Corvale": (build / "corvale/libCorvale.so", "GetElsetKeyMode"),
        "empty C++ library": (build / "bench/libempty_cxx.so", "Empty"),
        "empty C library": (build / "bench/libempty_c.so", "Empty"),
    }
    found = {"machine": machine(), "versions": versions(),
             "anatomy": {name: anatomy(library) for name, (library, _) in libraries.items()},
             "starts": starts(build / "bench/start_time", libraries, processes),
             "allocations": json.loads(run(str(build / "bench/Allocations")))}
    with open(target, "w", encoding="utf-8") as file:
        json.dump(found, file, indent=1)


if __name__ == "__main__":
    main()
