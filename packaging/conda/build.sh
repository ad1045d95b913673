#!/usr/bin/env bash
set -euo pipefail
cmake -G Ninja -S "$SRC_DIR" -B build ${CMAKE_ARGS:-} -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$PREFIX" -DCMAKE_INSTALL_LIBDIR=lib -DCORVALE_BUILD_TESTS=OFF
cmake --build build -j "${CPU_COUNT:-2}"
cmake --install build
