#!/usr/bin/env bash
# run.sh [INPUT-FILE]: builds the library and the program, loads INPUT-FILE and prints what its cards
# set. Without a name it loads examples/orbit.inp.
set -euo pipefail
from=$PWD
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

echo "run.sh: builds Corvale and loads an input file with the program corvale"
need "${build_packages[@]}"
build release -DCORVALE_BUILD_TESTS=OFF
file=${1:-$top/examples/orbit.inp}
cd "$from"
exec "$top/build/release/tools/corvale" load "$file"
