#!/usr/bin/env bash
# soak.sh: the exhaustive and long runs, each against the C library or a plain version of the rules.
#
#     scripts/soak.sh                        all but the floats: some minutes, a line each,
#                                            the shared things once more with ThreadSanitizer
#     scripts/soak.sh floats [FIRST LAST]    all 2^32 single-precision values, or the slices FIRST to
#                                            LAST of 0 to 255: slice, values, differences, checksum
#     scripts/soak.sh all                    both
#
# The floats take half an hour to an hour of one processor, two at most are used. Each slice that is
# done stands in build/soak-floats-TREE.txt, TREE being the sources' hash: a run that was stopped
# goes on where it was, and the total is printed once all slices are there.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

soaks="$top/build/release/tests"

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
        nice -n 19 xargs -r -P 2 -n 1 "$soaks/float_soak" | tee -a "$state" || true
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
    build_soaks release numeric_soak text_soak sort_soak matrix_difference log_soak share_soak
    soak numeric_soak  # all satellite numbers, every tenth of an arc second
    soak text_soak 2000000
    soak sort_soak 2000
    soak matrix_difference 70 130 200
    soak log_soak 100000
    soak share_soak 64
    build_soaks tsan share_soak
    soaks="$top/build/tsan/tests" soak share_soak 4
}

mkdir -p "$top/build"
case "${1:-others}" in
    floats) soak_floats "${@:2}" ;;
    others) soak_others ;;
    all) soak_others && soak_floats ;;
    *) sed -n '2,10s/^# \{0,1\}//p' "${BASH_SOURCE[0]}" >&2; exit 2 ;;
esac
