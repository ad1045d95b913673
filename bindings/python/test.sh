#!/usr/bin/env bash
# test.sh: checks the types of the Python binding, runs its example and its test
# (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

# The module alone: it needs nothing else of the package.
alone=../../build/bindings/python
mkdir -p "$alone/corvale"
cp corvale/capi.py "$alone/corvale"
export PYTHONPATH=$alone MYPYPATH=$alone PYTHONDONTWRITEBYTECODE=1

mypy --strict --cache-dir "$alone/mypy" --explicit-package-bases --namespace-packages \
    "$alone/corvale/capi.py" examples/load_file.py tests/test_capi.py
python3 examples/load_file.py "$CORVALE_INPUT" |
    grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 tests/test_capi.py
