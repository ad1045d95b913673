#!/usr/bin/env bash
# fuzz.sh TARGET SECONDS [LIBFUZZER-OPTION...]   builds one target and runs it
# fuzz.sh list                                   names the targets
# fuzz.sh --tally [FOLDER]                       adds up the runs that left their logs in a folder
# fuzz.sh --merge TARGET                         keeps what adds coverage in fuzz/corpus/TARGET
#
# With CORVALE_FUZZ_PRESET=fuzz-fast a run is without the sanitizers: ten times as many inputs. New
# inputs go to build/fuzz-work/TARGET, one that shows a fault is named on the last lines, and every
# run leaves its log in build/fuzz-logs.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

preset=${CORVALE_FUZZ_PRESET:-fuzz}
logs=$top/build/fuzz-logs

targets() { sed -n 's/^set(targets \(.*\))$/\1/p' "$top/fuzz/CMakeLists.txt" | tr ' ' '\n'; }

build_target() {
    need "${build_packages[@]}" clang libclang-rt-dev
    targets | grep -qx "$1" || { echo "no target $1; fuzz.sh list names them" >&2; exit 2; }
    (cd "$top" && cmake --preset "$preset" && cmake --build --preset "$preset" --target "fuzz_$1") >/dev/null
    mkdir -p "$top/build/fuzz-work/$1" "$logs"
}

# The last line of a log that has a figure tells how far the run came, even while it runs.
tally() {
    local file
    for file in "$1"/*.log; do
        awk -v target="$(basename "$file" | cut -d. -f1)" '
            /^#[0-9]+\t/ { runs = substr($1, 2); for (i = 1; i < NF; ++i) if ($i == "ft:") ft = $(i + 1) }
            /^stat::number_of_executed_units/ { runs = $2 }
            /ERROR: libFuzzer|ERROR: AddressSanitizer|runtime error/ { found = 1 }
            END { print target, runs + 0, ft + 0, found + 0 }' "$file"
    done | awk '{ runs[$1] += $2; if ($3 > ft[$1]) ft[$1] = $3; found[$1] += $4 }
        END { for (t in runs) { printf "| %s | %d | %d | %d |\n", t, runs[t], ft[t], found[t]; all += runs[t] }
              printf "| all | %d | | |\n", all }' | sort
}

case ${1:-} in
list) targets ;;
--tally) tally "${2:-$logs}" ;;
--merge)
    build_target "$2"
    mkdir -p "$top/fuzz/corpus/$2"
    "$top/build/$preset/fuzz/fuzz_$2" -merge=1 -use_counters=0 "$top/fuzz/corpus/$2" "$top/build/fuzz-work/$2" 2>&1 | tail -n 1
    ;;
*)
    [ $# -ge 2 ] || { sed -n '2,9s/^# //p' "${BASH_SOURCE[0]}"; exit 2; }
    target=$1 seconds=$2
    shift 2
    build_target "$target"
    log=$logs/$target.$(date +%s).$$.log
    status=0
    [ ! -w /dev/shm ] || export TMPDIR=/dev/shm  # Log makes and removes files all the time
    "$top/build/$preset/fuzz/fuzz_$target" "$top/build/fuzz-work/$target" "$top/fuzz/corpus/$target" \
        -max_total_time="$seconds" -max_len=128 -len_control=0 -reload=0 -print_final_stats=1 \
        -artifact_prefix="$top/build/fuzz-work/$target-" "$@" >"$log" 2>&1 || status=$?
    grep -aE '^(differs|==[0-9]+==|stat::number)|, not |runtime error|Test unit written' "$log" || true
    echo "| target | executions | features | runs that stopped |"
    tally "$logs"
    exit $status
    ;;
esac
