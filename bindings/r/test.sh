#!/usr/bin/env bash
# test.sh: installs the R package, runs its example and its test (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

out=$(cd ../.. && pwd)/build/bindings/r
rm -rf "$out/source"
mkdir -p "$out/source" "$out/library"
cp -r DESCRIPTION NAMESPACE R src "$out/source" # R compiles beside the sources
R CMD INSTALL --no-docs --no-test-load --library="$out/library" "$out/source" >"$out/install.log" 2>&1 ||
    { cat "$out/install.log" >&2; exit 1; }
export R_LIBS="$out/library"
Rscript --vanilla load_file.R "$CORVALE_INPUT" | grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 -B ../../tests/bindings/check.py r Rscript --vanilla tests/run_cases.R
