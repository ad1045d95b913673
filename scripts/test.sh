#!/usr/bin/env bash
# test.sh [PRESET...]: builds and tests everything: GCC, Clang, the baseline code paths, the
# sanitizers, the format and clang-tidy. With presets named, only those are built and tested.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

echo "test.sh: builds Corvale with every preset and runs its tests"
need "${build_packages[@]}" libgtest-dev clang clang-format clang-tidy libclang-rt-dev python3 \
    pkg-config locales

check_format() {
    echo "== format"
    (cd "$top" && git ls-files | grep -E '\.(c|h|cpp|hpp)$' |
        xargs clang-format --dry-run -Werror)
}

check_tidy() {
    echo "== clang-tidy"
    (cd "$top" && git ls-files | grep -E '^(corvale|tools|examples)/.*\.cpp$' |
        xargs -P 2 -n 4 clang-tidy -quiet -p build/clang 2>/dev/null)
}

test_preset() {
    echo "== $1"
    build "$1" -DCORVALE_BUILD_TESTS=ON
    ctest --test-dir "$top/build/$1" --output-on-failure -j 2 | tail -n 8
}

if [ $# -gt 0 ]; then
    for preset in "$@"; do test_preset "$preset"; done
    exit
fi
check_format
for preset in release clang baseline asan tsan; do test_preset "$preset"; done
check_tidy
echo "== all passed"
