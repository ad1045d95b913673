#!/usr/bin/env bash
# build-npm.sh: builds for WebAssembly, by Debian's Clang with WASI's C library, and packs the npm package:
# build/npm/corvale-VERSION.tgz.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

folder=$top/build/wasm package=$top/build/npm

command -v node >/dev/null || need nodejs
command -v npm >/dev/null || need npm
build_wasm

rm -rf "$package"
mkdir -p "$package"
cd "$package"
cp "$top"/bindings/javascript/wasm/{*.js,*.d.ts,package.json,README.md} "$top"/bindings/javascript/{c_api.js,c_api.d.ts,declarations.js} \
    "$folder/bindings/javascript/wasm/corvale.wasm" .
npm pack --silent
