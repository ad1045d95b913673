#!/usr/bin/env bash
# test-bindings.sh [LANGUAGE...]: builds the library and tests its bindings, those of all languages if
# none is named, two at a time. Prints one line a language; what a binding printed only if it fails.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

if [ $# -eq 0 ]; then
    cd "$top/bindings"
    set -- */test.sh
    set -- "${@%/test.sh}"
fi
for language in "$@"; do
    if [ ! -x "$top/bindings/$language/test.sh" ] || [ ! -f "$top/bindings/$language/packages" ]; then
        echo "test-bindings.sh: bindings/$language has no test.sh or no packages" >&2
        exit 2
    fi
done
echo "test-bindings.sh: builds Corvale and calls it from: $*"
# shellcheck disable=SC2046 # each word is a package
need "${build_packages[@]}" python3 $(cd "$top/bindings" && sed 's/#.*//' "${@/%//packages}")
mkdir -p "$top/build/bindings"
(cd "$top" && cmake --preset release -DCORVALE_BUILD_TESTS=OFF &&
    cmake --build --preset release --target Corvale) >"$top/build/bindings/library.log" 2>&1 ||
    { cat "$top/build/bindings/library.log" >&2; exit 1; }

logs=$top/build/bindings
python3 -B "$top/tests/bindings/recorder.py" "$top/build/release/corvale/libCorvale.so" >"$logs/recorder.c"
cc -shared -fPIC -O1 -Wall -Wextra -Werror -o "$logs/libCorvale.so" "$logs/recorder.c" -ldl
export CORVALE_LIBRARY="$logs/libCorvale.so"
export CORVALE_INPUT="$top/examples/orbit.inp"

# test_language LANGUAGE: its line if all is well; else everything that it printed, and 1.
test_language() {
    local log=$logs/$1.log said=$logs/$1.out status=0
    timeout 600 "$top/bindings/$1/test.sh" >"$said" 2>"$log" </dev/null || status=$?
    if [ "$status" -eq 0 ] && tail -n 1 "$said" | grep "^$1: .*, ok\$"; then return; fi
    printf '%s: FAILED with status %s\n%s\n' "$1" "$status" "$(tail -n 60 "$said" "$log")"
    return 1
}
export -f test_language
export top logs
printf '%s\n' "$@" | xargs -P 2 -I '{}' bash -c 'test_language {}' ||
    { echo "test-bindings.sh: a binding failed" >&2; exit 1; }
echo "test-bindings.sh: $# bindings passed"
