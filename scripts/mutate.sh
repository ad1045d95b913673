#!/usr/bin/env bash
# mutate.sh [COUNT [SEED [FILE...]]]: makes COUNT (20) random small changes of the library, one at a
# time in a copy of the sources, and prints which of them no test sees: some ten seconds each. FILEs,
# such as corvale/text/NumericFields.cpp, narrow the choice. docs/reliability.md says what is left.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

echo "mutate.sh: changes the library at random and runs its tests"
need "${build_packages[@]}" libgtest-dev python3 locales
tree="$top/build/mutate/tree"
build="$top/build/mutate/build"
rm -rf "$tree"
mkdir -p "$tree"
git -C "$top" ls-files -z | tar -C "$top" --null -T - -c | tar -C "$tree" -x
cmake --fresh -S "$tree" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    >"$top/build/mutate/build.log"
cmake --build "$build" >>"$top/build/mutate/build.log"
python3 -B "$top/scripts/mutate.py" "$tree" "$build" "${1-20}" "${2-1}" "${@:3}"
