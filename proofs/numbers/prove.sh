#!/usr/bin/env bash
# Proves that one product rounds every decimal number right: prints each claim that holds.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

"${CXX:-c++}" -std=c++20 -I. proofs/numbers/tables.cpp -o "$scratch/tables"
export PYTHONPATH=proofs PYTHONDONTWRITEBYTECODE=1
"$scratch/tables" | python3 proofs/numbers/prove.py
