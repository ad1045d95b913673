#!/usr/bin/env bash
# check-builds.sh: builds that could go wrong where the usual ones do not, and tools that see what
# tests cannot; a line for each with what it proved. About four minutes on two processors.
#
# Every build has to give what the plain versions of the rules give, and the digests in
# tests/cases/digests.txt.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

digests="$top/tests/cases/digests.txt"
release="$top/build/release"

# quietly NAME COMMAND...: prints what the command said only where it fails.
quietly() {
    local log="$top/build/check-$1.log"
    shift
    "$@" >"$log" 2>&1 || { cat "$log"; return 1; }
}

build_release() {
    cmake -S "$top" --preset release -DCORVALE_BUILD_TESTS=ON
    cmake --build "$top/build/release" --target fuzz_replay text_tests platform_tests core_tests
}

# build_library NAME COMPILER FLAGS: the library alone. The flags come first on every command line,
# as those of a compiler's wrapper do: no check at configure time sees them.
build_library() {
    local wrapper="$top/build/check/$1.sh"
    # shellcheck disable=SC2016 # for the wrapper to expand
    printf '#!/bin/sh\ncompiler=$1; shift; exec "$compiler" %s "$@"\n' "$3" >"$wrapper"
    chmod +x "$wrapper"
    cmake -S "$top" -B "$top/build/check/$1" -G Ninja -DCMAKE_CXX_COMPILER="$2" \
        -DCMAKE_CXX_COMPILER_LAUNCHER="$wrapper" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_FLAGS_RELEASE= -DCORVALE_BUILD_TESTS=OFF \
        -DCORVALE_BUILD_TOOLS=OFF -DCORVALE_BUILD_EXAMPLES=OFF -DCORVALE_INSTALL=OFF
    cmake --build "$top/build/check/$1" -- -j 2
}

same_bits() {
    local name=$1 library="$top/build/check/$1/corvale" fused
    quietly "$name" build_library "$@"
    LD_LIBRARY_PATH="$library" "$release/fuzz/fuzz_replay" --digests "$digests" >"$top/build/check/$name.txt" ||
        { echo "$name: differs"; cat "$top/build/check/$name.txt"; return 1; }
    fused=$(objdump -d "$library/libCorvale.so" | grep -cE '\svfn?m(add|sub)' || true)
    [ "$fused" -eq 0 ] || { echo "$name: $fused fused instructions"; return 1; }
    echo "$name ($2 $3): the same bits in all targets, no fused instruction"
}

check_bits() {
    local careless="-O3 -ffast-math -ffp-contract=fast -march=native -funsigned-char"
    grep -qw fma /proc/cpuinfo && careless+=" -mfma"
    mkdir -p "$top/build/check"
    same_bits gcc-plain g++ -O0
    same_bits clang-plain clang++ -O0
    same_bits gcc-careless g++ "$careless"
    same_bits clang-careless clang++ "$careless"
}

check_refusal() {
    local log="$top/build/check/refused.log"
    if cmake -S "$top" -B "$top/build/check/refused" -G Ninja -DCMAKE_CXX_FLAGS=-ffast-math \
        >"$log" 2>&1; then
        echo "fast-math in the flags was taken"
        return 1
    fi
    grep -q 'asks for inexact arithmetic' "$log"
    echo "fast-math: refused where it stands in the flags"
}

# GCC 12 knows little of C++: it takes the copy of an empty std::optional and any range-for for a use
# of something uninitialised (valgrind looks after those), and sees little in templates. The folders
# with resources are where it can help.
check_analyzer() {
    local source
    for source in "$top"/corvale/{platform,core,exports}/*.cpp; do
        [[ $source != */Windows* ]] || continue
        g++ -std=c++20 -I "$top" -O1 -fanalyzer -Wno-analyzer-use-of-uninitialized-value -Werror \
            -c "$source" -o /dev/null
    done
    echo "analyzer: nothing in platform, core and exports"
}

# memcheck PROGRAM ARGUMENT...
memcheck() {
    local program=$1
    shift
    quietly "$(basename "$program")" valgrind -q --error-exitcode=9 --leak-check=full \
        --show-leak-kinds=definite --errors-for-leak-kinds=definite "$release/$program" "$@"
    echo "valgrind $program: no invalid or uninitialised read, no leak"
}

# sanitized NAME SANITIZERS TARGET...: the fuzz targets, with the library in one program, under those of
# Clang's sanitizers.
sanitized() {
    local folder=$top/build/check/$1 target
    cmake -S "$top" -B "$folder" -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
        -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF -DCORVALE_SANITIZE="$2" \
        -DCMAKE_CXX_FLAGS="-fsanitize-ignorelist=$top/tests/cases/sanitizers.txt"
    cmake --build "$folder" --target fuzz_replay -- -j 2
    for target in "${@:3}"; do "$folder/fuzz/fuzz_replay" --random 3000 "$target"; done
}

# Nothing is read uninitialised, and no integer loses bits or wraps round but where that is meant.
check_sanitized() {
    local targets
    mapfile -t targets < <(sed -n 's/^\([A-Z][A-Za-z]*\) .*/\1/p' "$digests")
    quietly integer sanitized integer unsigned-integer-overflow,implicit-conversion "${targets[@]}"
    echo "integer: no unintended overflow or truncation in ${#targets[@]} fuzz targets"
    # The files of that target go through the C++ library, which is not instrumented.
    mapfile -t targets < <(printf '%s\n' "${targets[@]}" | grep -vx Log)
    quietly memory sanitized memory memory "${targets[@]}"
    echo "memory: nothing uninitialised is read in ${#targets[@]} fuzz targets"
}

# Left out: children that end without giving back what their parent allocated, limits of descriptors
# and memory that valgrind needs some of itself, and a writer that has to fill a pipe meanwhile.
check_memory() {
    memcheck fuzz/fuzz_replay --random 300  # no digests: its long doubles are short ones
    memcheck tests/text_tests --gtest_brief=1
    memcheck tests/platform_tests --gtest_brief=1 --gtest_filter=-*Child*:*ALimitLosesNothing*:*AFailedOpen*:*WaitWithoutStopping*
    memcheck tests/core_tests --gtest_brief=1 --gtest_filter=-*Children*
}

need "${build_packages[@]}" libgtest-dev clang valgrind libc6-dbg
mkdir -p "$top/build"
quietly release build_release
check_bits
check_refusal
"$top/scripts/check-emulated.sh" &  # mostly one process at a time, as are the next two
emulated=$!
check_analyzer
check_memory
check_sanitized
wait "$emulated"
echo "check-builds: all as expected"
