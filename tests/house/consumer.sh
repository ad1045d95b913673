#!/usr/bin/env bash
# Installs a build, moves what was installed, and lets a C99 and a C++20 program find, build and run
# with it: by find_package and by pkg-config, without a warning.
#
#     consumer.sh SOURCE BUILD C-COMPILER C++-COMPILER [SANITIZERS]
set -euo pipefail
source=$1 build=$2 cc=$3 cxx=$4 sanitize=${5:+-fsanitize=$5}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { printf 'consumer.sh: %s\n' "$*" >&2; exit 1; }
quietly() { "$@" >"$scratch/output" 2>&1 || { cat "$scratch/output" >&2; fail "failed: $*"; }; }
for tool in cmake pkg-config "$cc" "$cxx"; do
  command -v "$tool" >/dev/null || fail "$tool is missing"
done

quietly cmake --install "$build" --prefix "$scratch/first"
mkdir "$scratch/else where"
mv "$scratch/first" "$scratch/else where/moved"
prefix="$scratch/else where/moved"
libraries=$(dirname "$(find "$prefix" -name 'libCorvale.*' | head -1)")

cd "$prefix/include/corvale"
diff <(python3 "$source/tests/house/check_house.py" --headers "$source" | sort) \
  <(find . -type f -printf '%P\n' | sort) || fail "installed headers differ from the list"
"$prefix/bin/corvale" info | grep -q '^Arvenit Corvale' || fail "the installed program does not run"

mkdir "$scratch/consumer"
cd "$scratch/consumer"
cat >c.c <<'END'
#include <corvale/Corvale.h>
#include <stdio.h>
int main(void) {
    char info[CORVALE_MESSAGE_WIDTH + 1] = {0};
    CorvaleGetInfo(info);
    return puts(info) < 0 || CorvaleInit() != CORVALE_OK;
}
END
{
  python3 "$source/tests/house/check_house.py" --headers "$source" | sed 's/.*/#include <corvale\/&>/'
  cat <<'END'
#include <iostream>
int main() {
    std::array<char, 128> info;
    corvale::GenFunctions::GetSoftwareInfo("Consumer", info, "v1");
    std::cout.write(info.data(), info.size()) << '\n';
    return corvale::GenFunctions::NextSatKey(0) == 10000000000 ? 0 : 1;
}
END
} >cxx.cpp
cat >CMakeLists.txt <<'END'
cmake_minimum_required(VERSION 3.23)
project(Consumer C CXX)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_NO_SYSTEM_FROM_IMPORTED ON)  # warnings in the headers count
find_package(Corvale ${WANTED} REQUIRED CONFIG)
add_executable(c c.c)
add_executable(cxx cxx.cpp)
foreach(program IN ITEMS c cxx)
  target_compile_options(${program} PRIVATE -Wall -Wextra -Wpedantic -Werror)
  target_link_libraries(${program} PRIVATE Corvale::Corvale)
endforeach()
END
runs() { "./$1/c" | grep -q '^Arvenit Corvale ' && "./$1/cxx" | grep -q '^Arvenit Consumer - Version: v1 '; }

export CC=$cc CXX=$cxx CFLAGS=$sanitize CXXFLAGS=$sanitize
configure() { cmake -G Ninja -S . -B "$1" -DWANTED="$2" -DCMAKE_PREFIX_PATH="$prefix"; }
for version in 9 9.4.0 9.0; do
  quietly configure by_cmake $version
done
quietly cmake --build by_cmake
runs by_cmake || fail "a program built by find_package does not run"
for version in 8 10 9.5; do
  if configure "refused_$version" $version >/dev/null 2>&1; then fail "version $version was found"; fi
done

export PKG_CONFIG_PATH="$libraries/pkgconfig" LD_LIBRARY_PATH="$libraries"
pkg-config --exact-version=9.4.0 Corvale || fail "pkg-config does not find version 9.4.0"
eval "set -- $(pkg-config --cflags --libs Corvale)"
mkdir by_pkg_config
strict=(-Wall -Wextra -Wpedantic -Werror ${sanitize:+"$sanitize"})
quietly "$cc" -std=c99 "${strict[@]}" c.c "$@" -o by_pkg_config/c
quietly "$cxx" -std=c++20 "${strict[@]}" cxx.cpp "$@" -o by_pkg_config/cxx
runs by_pkg_config || fail "a program built by pkg-config does not run"
