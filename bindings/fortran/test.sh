#!/usr/bin/env bash
# test.sh: builds the Fortran binding, runs its example and its test (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

build=../../build/bindings/fortran
mkdir -p "$build"
strict=(gfortran -std=f2018 -Wall -Wextra -Werror -fcheck=all -O1 -J "$build")
"${strict[@]}" -fopenmp -c src/corvale_api.f90 -o "$build/corvale_api.o"
"${strict[@]}" -fopenmp -c src/corvale.f90 -o "$build/corvale.o"
for program in examples/load_file tests/run_cases; do
    "${strict[@]}" "$program.f90" "$build/corvale.o" "$build/corvale_api.o" -fopenmp \
        -o "$build/$(basename "$program")"
done

"$build/load_file" "$CORVALE_INPUT" | grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 -B ../../tests/bindings/check.py fortran "$build/run_cases"
