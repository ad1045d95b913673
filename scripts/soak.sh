#!/usr/bin/env bash
# soak.sh: the exhaustive and long runs, each against the C library or a plain version of the rules.
#
#     scripts/soak.sh                        all but the floats: some minutes, a line each,
#                                            the shared things once more with ThreadSanitizer
#     scripts/soak.sh floats [FIRST LAST]    all 2^32 single-precision values, or the slices FIRST to
#                                            LAST of 0 to 255: slice, values, differences, checksum
#     scripts/soak.sh elementary [COUNT]     the elementary functions against MPFR, COUNT arguments each,
#                                            100 million if it is not given: some three hours
#     scripts/soak.sh guest [ROUNDS]         a host's worst: killed writers, paused readers, handlers
#                                            of fork in every order, cancelled threads, leases, storms
#                                            of signals, limits that move; 1,000 rounds of each
#     scripts/soak.sh all                    the first two
#
# The floats take half an hour to an hour of one processor, two at most are used. Each slice that is
# done stands in build/soak-floats-TREE.txt, TREE being the sources' hash: a run that was stopped
# goes on where it was, and the total is printed once all slices are there.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

soaks="$top/build/release"

# build_soaks PRESET PROGRAM...
build_soaks() {
    need "${build_packages[@]}" libgtest-dev
    (cd "$top" && cmake --preset "$1" -DCORVALE_BUILD_TESTS=ON &&
        cmake --build --preset "$1" --target "${@:2}") >"$top/build/soak.log" 2>&1 ||
        { cat "$top/build/soak.log"; return 1; }
}

print_total() {
    local checksum
    checksum=$(sort -n "$1" | sha256sum | cut -c 1-16)
    awk -v checksum="$checksum" '{ values += $2; differences += $3 }
        END { printf "floats: %d slices, %.0f values, %d differences, checksum %s\n", NR, values,
                     differences, checksum; exit differences > 0 }' "$1"
}

soak_floats() {
    local state
    state="$top/build/soak-floats-$(git -C "$top" rev-parse --short HEAD:corvale).txt"
    build_soaks release float_soak
    touch "$state"
    seq "${1:-0}" "${2:-255}" | { grep -vxFf <(cut -d ' ' -f 1 "$state") || true; } |
        nice -n 19 xargs -r -P 2 -n 1 "$soaks/tests/float_soak" | tee -a "$state" || true
    if [ "$(wc -l <"$state")" -eq 256 ]; then print_total "$state"; fi
}

# soak NAME ARGUMENT...: runs one program and prints its last line with the time it took.
soak() {
    local name=$1 output start=$SECONDS
    shift
    output=$("$soaks/$name" "$@") || { echo "$name: $output"; return 1; }
    echo "$name $*: ${output##*$'\n'} ($((SECONDS - start)) s)"
}

soak_others() {
    local target
    build_soaks release numeric_soak fuzz_replay share_soak
    soak tests/numeric_soak  # all satellite numbers, every tenth of an arc second
    for target in Numbers NumberText FreeForm Csv Text Lists Angles Sort Matrices; do
        soak fuzz/fuzz_replay --random 1000000 "$target"
    done
    for target in Cards Log; do soak fuzz/fuzz_replay --random 30000 "$target"; done
    soak tests/share_soak 64
    build_soaks tsan share_soak
    soaks="$top/build/tsan" soak tests/share_soak 4
}

soak_guest() {
    build_soaks release processes_tests
    CORVALE_TIMES=${1:-1000} nice -n 19 "$soaks/tests/processes_tests" --gtest_brief=1 |
        grep -v '^Running main'
}

soak_elementary() {
    need libmpfr-dev libgmp-dev
    build_soaks release elementary_soak
    nice -n 19 "$soaks/tests/elementary_soak" all "${1:-100000000}" 7
}

mkdir -p "$top/build"
case "${1:-others}" in
    floats) soak_floats "${@:2}" ;;
    others) soak_others ;;
    elementary) soak_elementary "${@:2}" ;;
    guest) soak_guest "${@:2}" ;;
    all) soak_others && soak_floats ;;
    *) sed -n '2,15s/^# \{0,1\}//p' "${BASH_SOURCE[0]}" >&2; exit 2 ;;
esac
