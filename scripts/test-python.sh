#!/usr/bin/env bash
# test-python.sh: installs the Python package into a fresh virtual environment, without a package
# index, and runs its tests, the type checker and the Dask example on two processes; then packs its
# sources, as they are and again from what was packed, and installs it for editing.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

echo "test-python.sh: installs the package corvale and tests it"
need "${build_packages[@]}" python3-dev python3-venv pybind11-dev python3-numpy mypy python3-distributed
venv=$top/build/python-venv
python=$venv/bin/python
log=$top/build/python.log
mkdir -p "$top/build"

# quiet COMMAND...: prints what the command said only if it fails.
quiet() { "$@" >"$log" 2>&1 || { cat "$log"; return 1; }; }

echo "== pip install ."
quiet /usr/bin/python3 -m venv --clear --system-site-packages "$venv"
export PIP_NO_INDEX=1 PIP_DISABLE_PIP_VERSION_CHECK=1 CXXFLAGS=-Werror
quiet "$python" -m pip install "$top"

# Not in the folder of the sources, where the package would be found without its compiled part.
cd "$top/build"
echo "== tests"
"$python" -W error::ResourceWarning -m unittest discover -s "$top/bindings/python/tests" -t "$top/bindings/python/tests" \
    -p 'test_[av]*.py'
# The C API is tested by test-bindings.sh; here it comes out of the package, with the library in it.
"$python" "$top/bindings/python/examples/load_file.py" "$top/examples/orbit.inp" |
    grep -x 'element-set key mode 1, all-key mode 1' >/dev/null

echo "== types"
types=("$python" -m mypy --strict --cache-dir "$top/build/mypy")
"${types[@]}" -p corvale
"${types[@]}" --allow-untyped-calls "$top"/bindings/python/{tests,arrays}/*.py "$top/bindings/python/build_backend.py" \
    "$top/bench/python_arrays.py" "$top/examples/dask_catalogue.py"
"$python" -m mypy.stubtest corvale._arrays

echo "== Dask"
logs=$(mktemp -d)
"$python" "$top/examples/dask_catalogue.py" --files 6 --records 4000 --logs "$logs"
[ "$(cat "$logs"/*.log | grep -c '^loaded')" -eq 12 ] || { echo "a log lacks lines"; exit 1; }
rm -r "$logs"

echo "== sdist, here and outside git"
scratch=$(mktemp -d)
# pack FOLDER TO: the sdist of the package in FOLDER
pack() {
    (cd "$1/bindings/python" && "$python" -B -c 'import build_backend, sys; build_backend.build_sdist(sys.argv[1])' "$2")
}
mkdir "$scratch"/{first,second}
pack "$top" "$scratch/first"
tar -xzf "$scratch"/first/*.tar.gz -C "$scratch"
grep -x 'Name: corvale' "$scratch"/corvale-*/PKG-INFO
pack "$scratch"/corvale-* "$scratch/second"
diff <(tar -tzf "$scratch"/first/*.tar.gz | sort) <(tar -tzf "$scratch"/second/*.tar.gz | sort)
rm -r "$scratch"

echo "== pip install -e ."
quiet /usr/bin/python3 -m venv --clear --system-site-packages "$top/build/python-editable"
quiet "$top/build/python-editable/bin/python" -m pip install -e "$top"
"$top/build/python-editable/bin/python" -m unittest discover -s "$top/bindings/python/tests" -t "$top/bindings/python/tests" \
    -p 'test_appearance.py'
echo "== all passed"
