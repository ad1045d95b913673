#!/usr/bin/env bash
# faults.sh [--long]: fails every call of the library in every operation, kills and forks processes
# that log, fills their disk; prints the totals. With --long processes are killed and forked 1,000
# times each (several minutes).
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

case "${1-}" in
    "") times=20 ;;
    --long) times=1000 ;;
    *) echo "usage: faults.sh [--long]" >&2; exit 2 ;;
esac
echo "faults.sh: builds Corvale, fails its system calls and kills its processes"
need "${build_packages[@]}" libgtest-dev
cd "$top"
cmake --preset release >/dev/null
cmake --build --preset release --target fault_loops processes_tests >/dev/null
build/release/tests/faults/fault_loops
CORVALE_TIMES=$times build/release/tests/processes_tests --gtest_brief=1 --gtest_filter='Processes.*'
