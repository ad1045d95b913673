#!/usr/bin/env bash
# prove.sh [--quick]: the elementary functions. Tables: made again by Sollya, they are the committed ones.
# Polynomials: certified sup norms by Sollya. Rounding errors of the fast phases: by Gappa, a script for
# each entry of the tables. Four minutes on two processors; half a minute with --quick, which leaves out the
# arc functions.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
top=$(cd "$here/../.." && pwd)
source "$top/scripts/lib.sh"
need sollya gappa clang-format python3
cd "$here"
export PYTHONDONTWRITEBYTECODE=1

for table in *Table.sollya; do
    header=$top/corvale/numeric/elementary/${table%.sollya}.hpp
    sollya "$table" | clang-format --assume-filename="$header" | cmp - "$header" ||
        { echo "$table makes another table"; exit 1; }
    echo "${table%.sollya}: as made by Sollya"
done
for polynomials in *_polynomials.sollya; do
    claims=$(sollya "$polynomials")
    echo "$claims"
    [ "$(grep -c ': holds$' <<<"$claims")" -eq "$(grep -c '^claim(' "$polynomials")" ]
done
./sine_phases.py "$top"
./root_phases.py "$top"
[ "${1-}" = --quick ] || ./arc_phases.py "$top"
