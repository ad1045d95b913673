#!/usr/bin/env bash
# test.sh: builds the Ada binding, runs its example and its test (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

out=../../build/bindings/ada
mkdir -p "$out"
build() {
    gnatmake -q -gnat2012 -gnatwae -gnata -gnaty3abefhiklnprtuM110 -D "$out" -o "$out/$(basename "$1")" \
        -I. "$1.adb" -largs -ldl
}
build load_file
build tests/run_cases
"$out/load_file" "$CORVALE_INPUT" | grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 -B ../../tests/bindings/check.py ada "$out/run_cases"
