#!/usr/bin/env bash
# test.sh: installs the JavaScript binding beside koffi, runs its example and its test
# (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

# Some packages of Node bring npm along; Debian's does not.
if ! command -v npm >/dev/null; then
    source ../../scripts/lib.sh
    need npm
fi

out=../../build/bindings/javascript
mkdir -p "$out"
cp -r package.json package-lock.json .npmrc ./*.js ./*.d.ts test "$out"
checks=$PWD/../../tests/bindings
cd "$out"
if ! cmp -s package-lock.json installed.json; then
    npm ci --ignore-scripts --no-audit --no-fund --loglevel=error >/dev/null
    cp package-lock.json installed.json
fi
node load_file.js "$CORVALE_INPUT" | grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 -B "$checks/check.py" javascript node test/koffi.mjs
