#!/usr/bin/env bash
# check-packaging.sh: what an installed Corvale promises beyond the tests: the ABI, builds that can be
# reproduced, the sources with Clang and libc++, and a copy with prefixed C names for embedders.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

fail() { printf 'check-packaging: %s\n' "$*" >&2; exit 1; }
need "${build_packages[@]}" clang libc++-dev libc++abi-dev
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
quietly() { "$@" >"$scratch/log" 2>&1 || { cat "$scratch/log"; fail "failed: $*"; }; }

# The library and the examples, which have to print the same; the program corvale needs more than
# libc++ 14 has.
check_libcxx() {
    local folder=$top/build/libcxx name
    quietly env CC=clang CXX=clang++ cmake -G Ninja -S "$top" -B "$folder" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_FLAGS=-stdlib=libc++ -DCORVALE_BASELINE_ONLY=ON -DCORVALE_BUILD_TESTS=OFF \
        -DCORVALE_BUILD_TOOLS=OFF -DCORVALE_WARNINGS_AS_ERRORS=ON
    quietly cmake --build "$folder" -j 2
    for name in keys text angles matrices sorting; do
        "$folder/examples/example_$name" | cmp - "$top/examples/$name.out" ||
            fail "with libc++ the example $name prints something else"
    done
    quietly "$folder/examples/example_load_c" "$top/examples/orbit.inp"
    quietly "$folder/examples/example_load_cpp" "$top/examples/orbit.inp"
    if ldd "$folder/corvale/libCorvale.so" | grep -q libstdc++; then fail "libstdc++ is used"; fi
    echo "check-packaging: Clang with libc++ builds, loads and compares as it should"
}

# A program that uses its own, prefixed copy and another library's plain one beside it.
check_prefix() {
    local folder=$scratch/prefixed prefix=$scratch/prefix
    quietly cmake -G Ninja -S "$top" -B "$folder" -DCMAKE_BUILD_TYPE=Debug -DCORVALE_C_PREFIX=acme_ \
        -DCORVALE_BASELINE_ONLY=ON -DCORVALE_BUILD_{TESTS,TOOLS,EXAMPLES}=OFF
    quietly cmake --build "$folder" -j 2
    quietly cmake --install "$folder" --prefix "$prefix"
    cat >"$scratch/both.cpp" <<'END'
#include <corvale/Corvale.h>
#include <corvale/core/CorvaleTypes.hpp>
#include <dlfcn.h>
#include <cstdio>
static int OpenLogFile = 3;  // the name is free
int main(int, char** argv) {
    void* other = dlopen(argv[1], RTLD_NOW | RTLD_GLOBAL);
    if (other == nullptr) return std::fputs(dlerror(), stderr);
    const auto set = reinterpret_cast<int32_t (*)(int32_t)>(dlsym(other, "SetDupKeyMode"));
    const auto get = reinterpret_cast<int32_t (*)()>(dlsym(other, "GetDupKeyMode"));
    if (acme_SetDupKeyMode(1) != CORVALE_OK || get() != 0) return 1;
    if (acme_GetDupKeyMode() != 1 || corvale::CorvaleTypes::gDupKeyMode != 1) return 2;
    if (acme_SetDupKeyMode(0) != CORVALE_OK || set(1) != CORVALE_OK) return 3;
    if (corvale::CorvaleTypes::gDupKeyMode != 0) return 4;
    char text[CORVALE_MESSAGE_WIDTH + 1] = {};
    if (acme_SetDupKeyMode(OpenLogFile) != CORVALE_FAILED) return 5;
    acme_GetLastErrMsg(text);
    std::puts(text);
}
END
    export PKG_CONFIG_PATH=$prefix/lib/pkgconfig:$prefix/lib64/pkgconfig
    quietly g++ -std=c++20 -Wall -Wextra -Werror "$scratch/both.cpp" \
        $(pkg-config --cflags --libs Corvale) -Wl,-rpath,"$(pkg-config --variable=libdir Corvale)" \
        -o "$scratch/both"
    "$scratch/both" "$top/build/release/corvale/libCorvale.so" >"$scratch/message" ||
        fail "the prefixed copy and the plain one are not apart"
    grep -q '^SetDupKeyMode: invalid' "$scratch/message" || fail "messages have changed"
    if nm -D --defined-only "$folder/corvale/libacme_Corvale.so" | grep -vE ' (acme_|_ZNK?7corvale)'; then
        fail "these names are exported without the prefix"
    fi
    local names
    names=$(nm -D --defined-only "$folder/corvale/libacme_Corvale.so" |
        grep -oE ' T acme_\w+' | sed 's/.* //' | sort)
    [ "$names" = "$(sed -n 's/^function \(\w*\) .*/acme_\1/p' "$top/bindings/interface.txt" | sort)" ] ||
        fail "the exports are not the functions of the C API"
    [ "$names" = "$(sed -n 's/^CORVALE_API \w* \(\w*\)(.*/\1/p' \
        "$prefix/include/corvale/exports/CorvaleDllExports.h" | sort)" ] ||
        fail "the installed header declares other names"
    echo "check-packaging: a prefixed copy lives beside a plain one"
}

"$top/scripts/check-abi.sh"
"$top/scripts/check-reproducible.sh"
check_libcxx
check_prefix
