#!/usr/bin/env bash
# prove.sh [--quick] [TOPIC...]: proves again what the code relies on and no test can show: every folder of
# proofs/ is a topic with a script prove.sh of its own, which prints each claim and that it holds. With
# --quick, as CI runs it, the longest claims are left out. Fails where a claim does not hold or a tool is
# missing.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
cd "$top"

quick=()
if [ "${1-}" = --quick ]; then
    quick=(--quick)
    shift
fi
topics=("$@")
[ $# -gt 0 ] || for folder in proofs/*/; do topics+=("$(basename "$folder")"); done
for topic in "${topics[@]}"; do
    echo "== $topic"
    "proofs/$topic/prove.sh" "${quick[@]}"
done
echo "prove.sh: ${#topics[@]} topics proved in $SECONDS s"
