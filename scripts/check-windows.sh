#!/usr/bin/env bash
# check-windows.sh: builds for Windows with MinGW and runs there, under wine, what has to give the same
# bits and the same output: the fuzz targets with their digests, the tests of text and numbers, those of
# files, and the examples. With the library as a DLL; the tests of files with a static one too.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

googletest=/usr/src/googletest/googletest  # Debian's sources: there is no library for Windows
folder=$top/build/windows
examples=(log keys text angles matrices sorting threads)

cross() {
    cmake -G Ninja -DCMAKE_TOOLCHAIN_FILE="$top/cmake/mingw-w64.cmake" -DCMAKE_BUILD_TYPE=Release "$@"
}

# build_into FOLDER OPTION... --target TARGET...: those programs of ours.
build_into() {
    local into=$1 options=()
    shift
    while [ "$1" != --target ]; do
        options+=("$1")
        shift
    done
    cross -S "$top" -B "$into" -DCORVALE_INSTALL=OFF -DCORVALE_WARNINGS_AS_ERRORS=ON \
        -DGTEST_INCLUDE_DIR="$googletest/include" \
        -DGTEST_LIBRARY="$folder/googletest/lib/libgtest.a" \
        -DGTEST_MAIN_LIBRARY="$folder/googletest/lib/libgtest_main.a" "${options[@]}" &&
        cmake --build "$into" "$@" -- -j 2
}

build_all() {
    cross -S "$googletest" -B "$folder/googletest" -DCMAKE_CXX_FLAGS=-w &&
        cmake --build "$folder/googletest" -- -j 2 &&
        build_into "$folder" --target all &&
        build_into "$folder/static" -DBUILD_SHARED_LIBS=OFF --target windows_tests example_log
}

# run PROGRAM ARGUMENT...: prints the program's last line, or all of it where it fails.
run() {
    local program=$1 output
    shift
    output=$(cd "$scratch" && wine "$folder/$program.exe" "$@" 2>&1 | tr -d '\r') ||
        { echo "windows $program: $output"; return 1; }
    echo "windows $program: ${output##*$'\n'}"
}

# prints EXPECTED PROGRAM ARGUMENT...
prints() {
    local expected=$1 program=$2
    shift 2
    (cd "$scratch" && wine "$folder/$program.exe" "$@" 2>/dev/null | tr -d '\r') |
        diff -u "$expected" - || { echo "windows $program: prints something else"; return 1; }
    echo "windows $program${*:+ $*}: prints what it does elsewhere"
}

need "${build_packages[@]}" googletest g++-mingw-w64-x86-64-posix wine wine64
scratch=$(mktemp -d)  # with a configuration of wine's of its own
export WINEPREFIX=$scratch/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree=;mshtml='
trap 'wineserver -k || true; rm -rf "$scratch"' EXIT
mkdir -p "$top/build"
build_all >"$folder.log" 2>&1 || { cat "$folder.log"; exit 1; }

# Where the programs find the library, and those of the compiler.
runtime=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name=libstdc++-6.dll)")
WINEPATH=$(printf 'Z:%s;' "$folder/corvale" "$runtime" /usr/x86_64-w64-mingw32/lib)
export WINEPATH
cp "$top"/examples/*.inp "$scratch"

# The targets of files read and write as POSIX does; windows_tests stand in for them.
grep -vE '^(Cards|Log) ' "$top/tests/cases/digests.txt" >"$scratch/digests.txt"
run tests/windows/fuzz_replay --digests digests.txt
# There are no locales of Debian's to choose a decimal comma from.
run tests/windows/text_tests --gtest_brief=1 --gtest_filter=-*DecimalPointIsAComma
run tests/windows/numeric_tests --gtest_brief=1
run tests/windows/windows_tests --gtest_brief=1
run static/tests/windows/windows_tests --gtest_brief=1
build release --target example_load_c
for input in orbit cards faulty; do
    "$top/build/release/examples/example_load_c" "$top/examples/$input.inp" >"$scratch/$input.out"
    prints "$scratch/$input.out" examples/example_load_c "$input.inp"
done
for example in "${examples[@]}"; do
    prints "$top/examples/$example.out" "examples/example_$example"
done
prints "$top/examples/log.out" static/examples/example_log
echo "check-windows: all as expected"
