#!/usr/bin/env bash
# test.sh: runs the example and the test of the Lua binding (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

luajit load_file.lua "$CORVALE_INPUT" | grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 -B ../../tests/bindings/check.py lua luajit tests/run_cases.lua
