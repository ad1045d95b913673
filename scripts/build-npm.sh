#!/usr/bin/env bash
# build-npm.sh: builds for WebAssembly, by Debian's Clang with WASI's C library, and packs the npm package:
# build/npm/corvale-VERSION.tgz.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

folder=$top/build/wasm package=$top/build/npm

build_all() {
    cmake -S "$top" -B "$folder" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$top/cmake/wasm32-wasi.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF -DCORVALE_INSTALL=OFF \
        -DCORVALE_BUILD_TOOLS=OFF -DCORVALE_BUILD_EXAMPLES=OFF -DCORVALE_WARNINGS_AS_ERRORS=ON &&
        cmake --build "$folder" -- -j 2
}

need "${build_packages[@]}" clang lld llvm wasi-libc libc++-14-dev-wasm32 libclang-rt-14-dev-wasm32
command -v node >/dev/null || need nodejs
command -v npm >/dev/null || need npm
mkdir -p "$folder"
build_all >"$folder/build.log" 2>&1 || { cat "$folder/build.log" >&2; exit 1; }

rm -rf "$package"
mkdir -p "$package"
cd "$package"
cp "$top"/bindings/javascript/wasm/{*.js,*.d.ts,package.json,README.md} "$top"/bindings/javascript/{c_api.js,c_api.d.ts,declarations.js} \
    "$folder/bindings/javascript/wasm/corvale.wasm" .
npm pack --silent
