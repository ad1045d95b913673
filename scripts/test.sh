#!/usr/bin/env bash
# test.sh [all|PRESET...]: builds and tests everything: GCC, Clang, the baseline code paths, the
# sanitizers, the format and clang-tidy, the proofs, WebAssembly, then what is exported and installed, the
# program, the documents and the bindings. With "all" also other builds and machines, Windows among them, and
# clang-tidy on the program: some thirteen minutes more. With presets named, only those are built and
# tested. The longest runs have scripts of their own: soak.sh, faults.sh --long, fuzz.sh, build-deb.sh
# and check-deb.sh.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

echo "test.sh: builds Corvale with every preset and runs its tests"
need "${build_packages[@]}" libgtest-dev libmpfr-dev libgmp-dev clang clang-format clang-tidy libclang-rt-dev python3 \
    pkg-config locales patch

# What goes beyond the tests of one build, each a script that can be run alone.
checks=("prove --quick" check-wasm check-packaging check-program docs check-try test-bindings test-python)

# sources FOLDER...: the C and C++ files of those folders.
sources() {
    (cd "$top" && find "$@" -name '*.c' -o -name '*.h' -o -name '*.cpp' -o -name '*.hpp')
}

check_format() {
    echo "== format"
    (cd "$top" && sources corvale tools examples tests reference bench fuzz bindings |
        xargs clang-format --dry-run -Werror)
}

# check_tidy FOLDER...: what Clang compiles here, so without the half for Windows.
check_tidy() {
    echo "== clang-tidy: $*"
    (cd "$top" && sources "$@" | grep 'cpp$' | grep -vE "/(Windows|Wasi|wasm)" |
        xargs -P 2 -n 4 clang-tidy -quiet -p build/clang 2>&1 |
        grep -vE '^[0-9]+ warnings? (generated|treated)|^Suppressed|^Use -header-filter' || true) |
        tee "$top/build/tidy.log"
    if grep -qE 'error|warning' "$top/build/tidy.log"; then return 1; fi
}

# run_tests PRESET [REGEX]: prints the end of what ctest says, all of it where a test fails.
run_tests() {
    local log
    log=$(mktemp)
    ctest --test-dir "$top/build/$1" --output-on-failure -j 2 -R "${2:-.}" >"$log" 2>&1 ||
        { cat "$log"; return 1; }
    tail -n 4 "$log"
    rm -f "$log"
}

test_preset() {
    echo "== $1"
    build "$1" -DCORVALE_BUILD_TESTS=ON
    run_tests "$1"
}

# test_folders PRESET FOLDER...: only the tests of those folders, to which the preset can matter.
test_folders() {
    local preset=$1 folder targets=()
    shift
    echo "== $preset: $*"
    for folder in "$@"; do
        case $folder in
            fuzz) targets+=(fuzz_replay) ;;
            soak) targets+=(soak_programs) ;;
            faults) targets+=(fault_loops) ;;
            *) targets+=("${folder}_tests") ;;
        esac
    done
    build "$preset" -DCORVALE_BUILD_TESTS=ON --target "${targets[@]}"
    run_tests "$preset" "^($(IFS='|' && echo "$*"))/"
}

folders=(corvale examples)
if [ "${1-}" = all ]; then
    shift
    folders+=(tools)
    checks=(check-builds check-windows prove "${checks[@]:1}")
fi
if [ $# -gt 0 ]; then
    for preset in "$@"; do test_preset "$preset"; done
    exit
fi
check_format
for preset in release clang; do test_preset "$preset"; done
test_folders asan numeric text sorting core platform faults processes fuzz
test_folders baseline numeric text sorting core fuzz
test_folders tsan platform core processes soak
check_tidy "${folders[@]}"
for check in "${checks[@]}"; do
    echo "== $check"
    read -r -a words <<<"$check"
    "$top/scripts/${words[0]}.sh" "${words[@]:1}"
done
echo "== all passed in $((SECONDS / 60)) minutes"
