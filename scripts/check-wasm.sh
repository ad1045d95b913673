#!/usr/bin/env bash
# check-wasm.sh: builds for WebAssembly, with Debian's Clang and WASI's C library, and runs in Node what has
# to give the same bits and the same output: the fuzz targets on random input, with their digests, but
# for those of files; the C API; the examples.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

folder=$top/build/wasm
examples=(log keys text angles matrices sorting)

build_all() {
    cmake -S "$top" -B "$folder" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$top/cmake/wasm32-wasi.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF -DCORVALE_INSTALL=OFF \
        -DCORVALE_BUILD_TOOLS=OFF -DCORVALE_BUILD_EXAMPLES=OFF -DCORVALE_WARNINGS_AS_ERRORS=ON &&
        cmake --build "$folder" -- -j 2
}

need "${build_packages[@]}" clang lld llvm wasi-libc libc++-14-dev-wasm32 libclang-rt-14-dev-wasm32
command -v node >/dev/null || need nodejs
mkdir -p "$folder"
build_all >"$folder/build.log" 2>&1 || { cat "$folder/build.log"; exit 1; }
grep -vE '^(Cards|Log) ' "$top/tests/cases/digests.txt" >"$folder/digests.txt"

# run PROGRAM ARGUMENT...: in Node, with the working folder for its files.
run() {
    node --no-warnings --experimental-wasi-unstable-preview1 "$top/tests/wasm/run.mjs" "$folder/tests/wasm/$1.wasm" "${@:2}"
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
cp "$folder/digests.txt" "$top/examples/orbit.inp" .
output=$(run digests --digests digests.txt 2>&1) || { echo "$output"; exit 1; }
echo "wasm fuzz targets: ${output##*$'\n'}"
run c_api orbit.inp
echo "wasm C API: all 20 functions, with a log and a card file"
for example in "${examples[@]}"; do
    run "example_$example" | cmp - "$top/examples/$example.out"
    echo "wasm examples/$example: prints what it does elsewhere"
done
