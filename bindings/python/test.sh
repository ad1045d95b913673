#!/usr/bin/env bash
# test.sh: checks the types of the Python binding, runs its example and its test
# (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

# The module alone: it needs nothing else of the package, whose stubs of array procedures need NumPy.
here=$PWD
mkdir -p ../../build/bindings/python/corvale
alone=$(cd ../../build/bindings/python && pwd)
cp corvale/capi.py "$alone/corvale"
export PYTHONPATH=$alone MYPYPATH=$alone PYTHONDONTWRITEBYTECODE=1

(cd "$alone" && mypy --no-site-packages --strict --cache-dir mypy --explicit-package-bases --namespace-packages \
    corvale/capi.py "$here/examples/load_file.py" "$here/tests/"{run_cases,test_files}.py)
python3 examples/load_file.py "$CORVALE_INPUT" |
    grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 tests/test_files.py
python3 -B ../../tests/bindings/check.py python python3 tests/run_cases.py
