#!/usr/bin/env bash
# bench-wasm.sh: how fast a file is loaded and matrices are inverted in WebAssembly, under Node, beside the native
# library: medians of runs by turns.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

command -v node >/dev/null || need nodejs
need "${build_packages[@]}" libgtest-dev
build release -DCORVALE_BUILD_TESTS=ON --target Corvale
build_wasm speed
folder=$top/build/wasm
library=$top/build/release/corvale
g++ -std=c++20 -O3 -ffp-contract=off "-I$top" "$top/tests/wasm/Speed.cpp" -o "$folder/native_speed" \
    "-L$library" "-Wl,-rpath,$library" -lCorvale

cd "$folder"
for _ in {1..20000}; do cat "$top/examples/orbit.inp"; done >speed.inp
node "$top/tests/wasm/speed.mjs" ./native_speed "$folder/tests/wasm/speed.wasm" "$(stat -c %s speed.inp)" speed.inp
