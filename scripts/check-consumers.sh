#!/usr/bin/env bash
# Installs a build, moves what was installed, and lets a C99 and a C++20 program find, build and run
# with it: by find_package and by pkg-config, shared and static, and as a part of their own project,
# which asks for inexact arithmetic. Every C++ program prints the same bits. Without a warning.
#
#     check-consumers.sh SOURCE BUILD C-COMPILER C++-COMPILER [FLAGS]
set -euo pipefail
source=$1 build=$2 cc=$3 cxx=$4 flags=${5:-}
version=$(sed -n 's/^  VERSION \([0-9.]*\)$/\1/p' "$source/CMakeLists.txt")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { printf 'check-consumers.sh: %s\n' "$*" >&2; exit 1; }
quietly() { "$@" >"$scratch/output" 2>&1 || { cat "$scratch/output" >&2; fail "failed: $*"; }; }
for tool in cmake ninja pkg-config nm "$cc" "$cxx"; do
  command -v "$tool" >/dev/null || fail "$tool is missing"
done
export CC=$cc CXX=$cxx CFLAGS='' CXXFLAGS=$flags SOURCE_DATE_EPOCH=1700000000
unset PKG_CONFIG_PATH DESTDIR

# install KIND BUILD: into a prefix that is then moved to another place, with a blank in its name.
install() {
  quietly cmake --install "$2" --prefix "$scratch/first"
  mkdir -p "$scratch/else where"
  mv "$scratch/first" "$scratch/else where/$1"
}
install shared "$build"
quietly cmake -G Ninja -S "$source" -B "$scratch/static" -DCMAKE_BUILD_TYPE=Debug \
  -DBUILD_SHARED_LIBS=OFF -DCORVALE_BASELINE_ONLY=ON -DCORVALE_BUILD_{TESTS,TOOLS,EXAMPLES}=OFF
quietly cmake --build "$scratch/static" -j 2
install static "$scratch/static"

cd "$scratch/else where/shared/include/corvale"
headers=$(python3 "$source/tests/house/check_house.py" --headers "$source")
diff <(sort <<<"$headers") <(find . -type f -printf '%P\n' | sort) ||
  fail "installed headers differ from the list"

mkdir "$scratch/consumer"
cd "$scratch/consumer"
cat >c.c <<'END'
#include <corvale/Corvale.h>
#include <stdio.h>
int main(void) {
    char info[CORVALE_MESSAGE_WIDTH + 1] = {0};
    CorvaleGetInfo(info);
    return printf("%s %s\n", CORVALE_VERSION, info) < 0 || CorvaleInit() != CORVALE_OK;
}
END
{
  sed 's/.*/#include <corvale\/&>/' <<<"$headers"
  cat <<'END'
#include <cstdio>
using namespace corvale::GenFunctions;
int main() {
    constexpr int n = 23;
    double a[n * n], inverse[n * n], b[n], x[n];
    for (int i = 0; i < n; ++i) {
        b[i] = 0.1 * i;
        for (int j = 0; j < n; ++j) a[n * i + j] = i == j ? 40.3 : 1.0 / (i + j + 0.7);
    }
    Cholesky(a, b, n, inverse, x);
    MtxInv({a, n, n}, {a, n, n});
    for (const double value : inverse) std::printf("%a ", value);
    for (const double value : a) std::printf("%a ", value);
    for (const double value : x) std::printf("%a ", value);
    for (const char* text : {"6378.135", "1e-310", "4.9e-324", "1.7976931348623159e308"})
        std::printf("%a ", corvale::StrFunctions::StrToReal(text));
    std::printf("%a\n", Mag(Cross({0.1, 0.2, 0.3}, {0.7, 1.1, 1.3})));
}
END
} >cxx.cpp
cat >CMakeLists.txt <<'END'
cmake_minimum_required(VERSION 3.23)
project(Consumer LANGUAGES ${LANGUAGE})
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_NO_SYSTEM_FROM_IMPORTED ON)  # warnings in the headers count
find_package(Corvale ${WANTED} REQUIRED CONFIG)
if(NOT Corvale_VERSION VERSION_EQUAL VERSION)
  message(FATAL_ERROR "version ${Corvale_VERSION}, not ${VERSION}")
endif()
add_executable(program ${FILE})
target_compile_options(program PRIVATE -Wall -Wextra -Wpedantic -Werror)
target_link_libraries(program PRIVATE Corvale::Corvale)
END

# row LANGUAGE FINDER KIND PROGRAM: runs the program and prints its row of the table.
declare -A expected=()
row() {
  local got
  got=$("$4") || fail "$1, $2, $3: the program does not run"
  # The information line of the shared and the static library differ in nothing but their dates.
  [[ $1 == C ]] && got=$(sed 's/ - Build: [^-]* - / - /' <<<"$got")
  : "${expected[$1]:=$got}"
  [[ $got == "${expected[$1]}" ]] || fail "$1, $2, $3 prints $got instead of ${expected[$1]}"
  printf '%-8s  %-4s  %-16s  %-7s  %-5s  passed\n' "$(basename "$cc")" "$1" "$2" "$3" "${5:-moved}"
}

by_cmake() {  # KIND LANGUAGE FILE
  quietly cmake -G Ninja -S . -B "cmake_$1_$2" -DLANGUAGE="$2" -DFILE="$3" -DVERSION="$version" \
    -DWANTED="${version%%.*}" -DCMAKE_PREFIX_PATH="$scratch/else where/$1"
  quietly cmake --build "cmake_$1_$2"
  row "${2/CXX/C++}" find_package "$1" "./cmake_$1_$2/program"
}

by_pkg_config() {  # KIND LANGUAGE FILE COMPILER STANDARD [STATIC]
  local libraries
  libraries=$(dirname "$(find "$scratch/else where/$1" -name 'libCorvale.*' | head -1)")
  export PKG_CONFIG_PATH="$libraries/pkgconfig" LD_LIBRARY_PATH="$libraries"
  pkg-config --exact-version="$version" Corvale || fail "pkg-config does not find $version"
  eval "set -- $(printf '%q ' "$@") $(pkg-config ${6:-} --cflags --libs Corvale)"
  # shellcheck disable=SC2086 # the flags are words
  quietly "$4" "$5" $flags -Wall -Wextra -Wpedantic -Werror "$3" "${@:6}" -o "pkg_$1_$2"
  row "$2" pkg-config "$1" "./pkg_$1_$2"
  unset PKG_CONFIG_PATH LD_LIBRARY_PATH
}

printf '%-8s  %-4s  %-16s  %-7s  %-5s\n' compiler lang finder library prefix
for kind in shared static; do
  by_cmake $kind C c.c
  by_cmake $kind CXX cxx.cpp
  static=$([[ $kind == shared ]] || echo --static)
  by_pkg_config $kind C c.c "$cc" -std=c99 $static
  by_pkg_config $kind C++ cxx.cpp "$cxx" -std=c++20 $static
done

# Versions: the header's (the first word of the C program) is CMake's and pkg-config's; so is that
# of the program's --version. The information line keeps its text, v9.4.
[[ ${expected[C]} == "$version Arvenit Corvale - Version: v9.4 - Platform: "* ]] ||
  fail "the header or the information line have another version: ${expected[C]}"
program="$scratch/else where/shared/bin/corvale"
"$program" info | grep -q "Corvale - Version: v9.4 " ||
  fail "the installed program does not run or tells another version"
[[ $("$program" --version) == *"$version" ]] || fail "the program's --version differs"
for wanted in 8 10 9.6; do
  if cmake -G Ninja -S . -B refused -DLANGUAGE=NONE -DWANTED=$wanted -DVERSION="$version" \
    -DCMAKE_PREFIX_PATH="$scratch/else where/shared" >"$scratch/output" 2>&1; then
    fail "version $wanted was found"
  fi
  grep -q 'version: '"$version" "$scratch/output" || fail "version $wanted was not even considered"
done

# As a part of a project that asks for inexact arithmetic. Neither tests nor install rules nor flags
# come along, and the flags of the project change no bit.
inexact='-march=native -Ofast -ffast-math -funsafe-math-optimizations -ffp-contract=fast'
mkdir "$scratch/super"
cd "$scratch/super"
cp "$scratch"/consumer/c{.c,xx.cpp} .
cat >CMakeLists.txt <<'END'
cmake_minimum_required(VERSION 3.23)
project(Super C CXX)
enable_testing()
add_subdirectory("${CORVALE}" corvale)
foreach(file IN ITEMS c.c cxx.cpp)
  add_executable(${file}.program ${file})
  target_link_libraries(${file}.program PRIVATE Corvale::Corvale)
endforeach()
END
quietly cmake -G Ninja -S . -B build -DCORVALE="$source" -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_CXX_FLAGS="$inexact $flags" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON
quietly cmake --build build -j 2
row C add_subdirectory shared build/c.c.program -
row C++ add_subdirectory shared build/cxx.cpp.program -
ctest --test-dir build -N | grep -q 'Total Tests: 0' || fail "a sub-project brings its tests along"
quietly cmake --install build --prefix "$scratch/nothing"
[[ ! -e $scratch/nothing ]] || fail "a sub-project installs something"
if grep -q 'BUILD_SHARED_LIBS' build/CMakeCache.txt; then
  fail "a sub-project decides on the libraries of the project around it"
fi
if ninja -C build -t commands cxx.cpp.program c.c.program |
  grep -E -- '-c .*/super/c|-o (c.c|cxx.cpp).program' |
  grep -E -- '-W[^l]|-ffp-contract=off|-fno-|prefix-map|-DCORVALE'; then
  fail "a sub-project brings its flags along"
fi
if nm build/corvale/corvale/libCorvale.so | grep -i 'set_fast_math'; then
  fail "loading the library flushes subnormals in the whole process"
fi

# Behind the flags for exact arithmetic no other flag can touch it.
python3 - build/compile_commands.json <<'END' || fail "flags are not in the order that keeps bits"
import json, re, sys
harmless = r"-(W|M|D|I|std=|ffile-prefix-map=|O[0-3]$|o$|c$|stdlib=|fno-math-errno$|fno-tree-slp-vectorize$|falign-loops=|fno-(ipa-cp-clone|peel-loops|unswitch-loops)$)|[^-]"
commands = [c["command"].split() for c in json.load(open(sys.argv[1])) if "/corvale/" in c["file"]]
for words in commands:
    last = words.index("-ffp-contract=off"), words.index("-fno-fast-math")
    behind = [w for w in words[max(last) + 1:] if not re.match(harmless, w)]
    exact = ("-fno-rounding-math", "-fno-single-precision-constant", "-mfpmath=sse", "-mno-recip", "-mrecip=none")
    if "-Ofast" not in words[:min(last)] or not set(behind) <= set(exact):
        sys.exit(f"{words[-1]}: {behind}")
sys.exit(0 if len(commands) > 30 else f"only {len(commands)} sources")
END
