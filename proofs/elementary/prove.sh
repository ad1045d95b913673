#!/usr/bin/env bash
# prove.sh [--quick]: the elementary functions. Tables: made again by Sollya, they are the committed ones.
# Polynomials: certified sup norms by Sollya. Rounding errors of the fast phases: by Gappa, a script for
# each entry of the tables. Hard arguments: found again, they are the committed ones. Five minutes on two
# processors; half a minute with --quick, which leaves out the arc functions and the search.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
top=$(cd "$here/../.." && pwd)
source "$top/scripts/lib.sh"
need sollya gappa clang-format python3 python3-gmpy2
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
[ "${1-}" = --quick ] && exit
./arc_phases.py "$top"
# Debian's own Python, which has gmpy2.
PYTHONPATH=.. /usr/bin/python3 hard_cases.py | cmp - "$top/tests/cases/hard_arguments.txt"
echo "hard arguments: as found again"
