#!/usr/bin/env bash
# coverage.sh: which lines and branches of corvale/ the tests reach, as gcovr prints it. Fails where
# one is not reached that tests/cases/unreached.txt does not name with a reason. Some six minutes on two
# processors.
#
# Counted are the tests of the library, the fault loops, the killed and forking processes, and the fuzz
# targets on their corpus and on random inputs; the latter once more on an emulated processor that has
# no wide vectors.
#
# Clang counts, for GCC's counters know nothing of the source: they add branches for exceptions, and
# count each copy of an inlined template as branches of its own. What is left out here is decided by
# the compiler, not by what the library is given: `if constexpr`, and conditions on template arguments.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

counts="$top/build/coverage/counts"
programs=(tests/{text,numeric,sorting,platform,core,exports,processes}_tests
    tests/exports/exports_c99 tests/faults/fault_loops fuzz/fuzz_replay)

# A child of a test leaves with _exit, which writes no counters.
build_all() {
    local source="$top/build/coverage-exit.c"
    cat >"$source" <<'END'
int __llvm_profile_write_file(void);
_Noreturn void __real__exit(int status);
_Noreturn void __wrap__exit(int status);
void __wrap__exit(int status) {
    (void)__llvm_profile_write_file();
    __real__exit(status);
}
END
    clang -c "$source" -o "${source%.c}.o"
    build coverage --target "${programs[@]##*/}"
}

# count NAME COMMAND...: runs it; all processes of it add to one file.
count() {
    local name=$1 log="$counts/$1.log"
    shift
    LLVM_PROFILE_FILE="$counts/$name-%1m.profraw" "$@" >"$log" 2>&1 || { cat "$log"; return 1; }
    echo "$name: done"
}

run_all() {
    local program replay=fuzz/fuzz_replay
    for program in "${programs[@]}"; do
        case $program in
            *_c99) count "${program##*/}" "$program" "$top/examples/orbit.inp" ;;
            fuzz/*) ;;
            *) count "${program##*/}" "$program" ;;
        esac
    done
    count corpus $replay "$top/fuzz/corpus"
    count random $replay --digests "$top/tests/cases/digests.txt"
    count baseline qemu-x86_64-static -cpu Nehalem $replay --random 200
}

# export_as FORMAT ENDING
export_as() {
    local objects=() program
    for program in "${programs[@]:1}"; do objects+=(-object "$program"); done
    llvm-cov export -format="$1" -instr-profile "$counts/all.profdata" "${programs[0]}" \
        "${objects[@]}" >"$counts/all.$2" 2>/dev/null
}

need "${build_packages[@]}" clang llvm libclang-rt-dev libgtest-dev python3 gcovr qemu-user-static
mkdir -p "$top/build"
build_all
rm -rf "$counts"
mkdir -p "$counts"
cd "$top/build/coverage"
run_all
llvm-profdata merge -o "$counts/all.profdata" "$counts"/*.profraw
export_as text json
export_as lcov lcov
cd "$top"
status=0
scripts/coverage.py tests/cases/unreached.txt "$counts/trace.json" "$counts/all" || status=1
gcovr -r . -a "$counts/trace.json" -s | tail -n +5 | grep -v '^functions'
exit $status
