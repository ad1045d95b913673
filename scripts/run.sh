#!/usr/bin/env bash
# run.sh [INPUT-FILE]: builds the library and the program, loads INPUT-FILE and prints what its cards
# set. Without a name it loads examples/orbit.inp.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

echo "run.sh: builds Corvale and loads an input file with the program corvale"
if [ $# -gt 1 ]; then
    echo "usage: run.sh [INPUT-FILE]" >&2
    exit 2
fi
need "${build_packages[@]}"
# Its progress is shown: it takes a minute.
(cd "$top" && cmake --preset release -DCORVALE_BUILD_TESTS=OFF >/dev/null && cmake --build --preset release) >&2
if [ $# -eq 0 ]; then
    cd "$top"
    set -- examples/orbit.inp
fi
exec "$top/build/release/tools/corvale" load -- "$1"
