#!/usr/bin/env bash
# test.sh: builds the MEX file, runs the example and the test in Octave (scripts/test-bindings.sh calls
# it).
set -euo pipefail
cd "$(dirname "$0")"

build=../../build/bindings/octave
mkdir -p "$build"
(
    cd "$build"  # where mkoctfile leaves its object file
    CXXFLAGS='-O2 -std=c++17 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror' \
        mkoctfile --mex -I../../.. ../../../bindings/octave/corvale_mex.cpp -o corvale_mex.mex
)

octave=(octave-cli --norc --no-history --path "$PWD:$build:$PWD/examples:$PWD/tests")
"${octave[@]}" --eval 'load_file(getenv("CORVALE_INPUT"))' |
    grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 -B ../../tests/bindings/check.py octave "${octave[@]}" --eval 'run_cases()'
