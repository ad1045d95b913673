#!/usr/bin/env bash
# check-try.sh: opens the page "Try it" of the built site in Chromium, drops files on it, types, converts, and
# compares what it says with the program's output. Pictures of it are in build/try.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

folder=$top/build/try

need "${build_packages[@]}" libgtest-dev chromium
command -v node >/dev/null || need nodejs
command -v npm >/dev/null || need npm
build release -DCORVALE_BUILD_TESTS=ON --target corvale_program
cd "$top"
# The page as it is now.
if [ ! -f build/site/try-it/try.wasm ] ||
    find docs/try docs/site tools bindings/javascript/wasm examples/*.inp -newer build/site/try-it/try.wasm | grep -q .; then
    scripts/docs.sh >/dev/null
fi

mkdir -p "$folder"
cp "$top"/tests/try/{*.mjs,package.json,package-lock.json,.npmrc} "$folder"
cd "$folder"
if ! cmp -s package-lock.json installed.json; then
    npm ci --ignore-scripts --no-audit --no-fund --loglevel=error >/dev/null
    cp package-lock.json installed.json
fi
node try.mjs "$top/build/site" "$top/build/release/tools/corvale" "$top/examples" "$folder"
