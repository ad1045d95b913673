#!/usr/bin/env bash
# check-emulated.sh [TARGET...]: builds for other processors and runs there, under emulation, what
# has to give the same bits: aarch64, and s390x, whose bytes stand in the other order. The fuzz targets
# on random input, with their digests, on each; on s390x the tests of text and numbers too.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

googletest=/usr/src/googletest/googletest  # Debian's sources: there is no library for s390x

# cross TARGET OPTION...: configures something for that processor.
cross() {
    local target=$1
    shift
    cmake -G Ninja -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR="$target" \
        -DCMAKE_C_COMPILER="$target-linux-gnu-gcc" -DCMAKE_CXX_COMPILER="$target-linux-gnu-g++" \
        -DCMAKE_CROSSCOMPILING_EMULATOR="qemu-$target-static;-L;/usr/$target-linux-gnu" \
        -DCMAKE_BUILD_TYPE=Release "$@"
}

# The library and the named programs, in build/TARGET.
build_for() {
    local target=$1 folder="$top/build/$1"
    shift
    cross "$target" -S "$googletest" -B "$folder/googletest" -DCMAKE_CXX_FLAGS=-w
    cmake --build "$folder/googletest" -- -j 2
    cross "$target" -S "$top" -B "$folder" -DCORVALE_INSTALL=OFF \
        -DGTEST_INCLUDE_DIR="$googletest/include" \
        -DGTEST_LIBRARY="$folder/googletest/lib/libgtest.a" \
        -DGTEST_MAIN_LIBRARY="$folder/googletest/lib/libgtest_main.a"
    cmake --build "$folder" --target "$@" -- -j 2
}

# run TARGET PROGRAM ARGUMENT...: prints the program's last line, or all of it where it fails.
run() {
    local target=$1 program=$2 output
    shift 2
    output=$("qemu-$target-static" -L "/usr/$target-linux-gnu" "$top/build/$target/$program" \
        "$@" 2>&1) || { echo "$target $program: $output"; return 1; }
    echo "$target $program: ${output##*$'\n'}"
}

check_target() {
    local target=$1 log="$top/build/$1.log" programs=(fuzz_replay)
    [ "$target" = s390x ] && programs+=(text_tests numeric_tests)
    need "g++-$target-linux-gnu"
    build_for "$target" "${programs[@]}" >"$log" 2>&1 || { cat "$log"; return 1; }
    run "$target" fuzz/fuzz_replay --digests "$top/tests/cases/digests.txt"
    [ "$target" = s390x ] || return 0
    # The C library's compiled locales are those of the machine that made them.
    run "$target" tests/text_tests --gtest_brief=1 --gtest_filter=-*DecimalPointIsAComma
    run "$target" tests/numeric_tests --gtest_brief=1
}

mkdir -p "$top/build"
need "${build_packages[@]}" libgtest-dev qemu-user-static
[ $# -gt 0 ] || set -- aarch64 s390x
for target in "$@"; do check_target "$target"; done
