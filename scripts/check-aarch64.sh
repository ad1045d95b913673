#!/usr/bin/env bash
# Builds the bit-for-bit comparisons for aarch64 and runs them under emulation: the results have to
# be those of the plain loops there too. On Debian it needs the packages g++-aarch64-linux-gnu and
# qemu-user-static; without them it fails.
#
# Usage: scripts/check-aarch64.sh [LAST-ORDER]
set -euo pipefail
cd "$(dirname "$0")/.."
last=${1:-40}
build=build/aarch64
compiler=aarch64-linux-gnu-g++
emulator=qemu-aarch64-static
for tool in "$compiler" "$emulator"; do
  command -v "$tool" >/dev/null || { echo "check-aarch64: $tool is missing" >&2; exit 1; }
done
mkdir -p "$build"
flags=(-std=c++20 -ffp-contract=off -I. -Itests -Ibench)

# comparison NAME ARGUMENTS LIBRARY-SOURCE... : builds tests/soak/NAME.cpp with the plain loops that
# belong to it, which no optimiser touches, and runs it.
comparison() {
  local name=$1 arguments=$2
  shift 2
  "$compiler" "${flags[@]}" -O0 -c bench/literal/LiteralMatrices.cpp -o "$build/$name-literal.o"
  "$compiler" "${flags[@]}" -O3 -static "$@" tests/soak/"$name".cpp "$build/$name-literal.o" \
    -o "$build/$name"
  # shellcheck disable=SC2086 # the arguments are words
  "$emulator" "$build/$name" $arguments
}

comparison MatrixDifference "$last 65" corvale/numeric/PackedSymmetric.cpp \
  corvale/numeric/Cholesky.cpp corvale/numeric/MatrixInversion.cpp
