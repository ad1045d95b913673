#!/usr/bin/env bash
# prove.sh: the elementary functions. Tables: made again by Sollya, they are the committed ones.
# Polynomials: certified sup norms by Sollya. Rounding errors of the fast phases: by Gappa, a script for
# each entry of the tables. Half a minute.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
top=$(cd "$here/../.." && pwd)
source "$top/scripts/lib.sh"
need sollya gappa clang-format python3
cd "$here"

for table in *Table.sollya; do
    header=$top/corvale/numeric/elementary/${table%.sollya}.hpp
    sollya "$table" | clang-format --assume-filename="$header" | cmp - "$header" ||
        { echo "$table makes another table"; exit 1; }
    echo "${table%.sollya}: as made by Sollya"
done
claims=$(sollya polynomials.sollya)
echo "$claims"
if [ "$(grep -c ': holds$' <<<"$claims")" -ne 4 ] || grep -q NOT <<<"$claims"; then exit 1; fi
./fast_phases.py "$top"
