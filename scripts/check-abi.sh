#!/usr/bin/env bash
# check-abi.sh [--renew]: compares what libCorvale.so exports with what was promised: the symbols,
# their version nodes and the sizes of globals (tests/abi/*.symbols), and the types behind them
# (tests/abi/*.xml, read by abidiff). Any difference is a failure, an addition too; --renew writes
# both files anew. docs/compatibility.md says when that is right.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

fail() { printf 'check-abi: %s\n' "$*" >&2; exit 1; }
renew=${1:-}
[[ $# -le 1 && ( -z $renew || $renew == --renew ) ]] || fail "usage: check-abi.sh [--renew]"
need g++ cmake ninja-build binutils abigail-tools
for tool in abidw abidiff readelf; do
    command -v "$tool" >/dev/null || fail "$tool is missing: nothing was compared"
done

# The promise is recorded for one platform; names and sizes follow from it elsewhere.
platform=$(uname -s)-$(uname -m)
promised=$top/tests/abi/$platform ignored=$top/tests/abi/ignored.abignore
[[ -f $promised.xml || $renew ]] || fail "no promise is recorded for $platform"

# Always the same build, so that only a change of the code can make a difference.
folder=$top/build/abi
mkdir -p "$folder"
(CC=gcc CXX=g++ cmake -S "$top" -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DCORVALE_BASELINE_ONLY=ON -DCORVALE_BUILD_{TESTS,TOOLS,EXAMPLES}=OFF &&
    cmake --build "$folder" -j 2 --target Corvale) >"$folder/log" 2>&1 ||
    { cat "$folder/log"; fail "the library does not build"; }
library=$folder/corvale/libCorvale.so

# One line a symbol: kind, binding, size where it is a promise, name@@node.
list_symbols() {
    readelf --dyn-syms --wide "$library" |
        awk '$7 ~ /^[0-9]+$/ && $8 ~ /@/ { print $4, $5, $4 == "OBJECT" ? $3 : "-", $8 }' |
        LC_ALL=C sort -k4
}

describe() {
    abidw --exported-interfaces-only --suppressions "$ignored" --no-corpus-path \
        --no-comp-dir-path --no-show-locs --no-elf-needed --no-write-default-sizes \
        --no-parameter-names --out-file "$1" "$library"
    # Without types to compare abidiff would find no difference.
    grep -q '<function-decl ' "$1" || fail "$1 holds no types"
}

if [[ $renew ]]; then
    list_symbols >"$promised.symbols"
    describe "$promised.xml"
    echo "check-abi: renewed; look at the difference before you commit it"
    exit
fi

list_symbols >"$folder/symbols"
[ -s "$folder/symbols" ] || fail "no symbols were read"
if grep -E ' (WEAK|UNIQUE) ' "$folder/symbols"; then
    fail "these are exported, but belong to whoever defines them first"
fi
diff -u "$promised.symbols" "$folder/symbols" || fail "the exported symbols have changed"
describe "$folder/types.xml"
abidiff --suppressions "$ignored" "$promised.xml" "$folder/types.xml" || fail "the types behind the symbols have changed"
echo "check-abi: $(wc -l <"$folder/symbols") symbols and their types are as promised"
