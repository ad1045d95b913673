#!/usr/bin/env bash
# test.sh: runs the example and the test of the Ruby binding (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

ruby -w load_file.rb "$CORVALE_INPUT" | grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 -B ../../tests/bindings/check.py ruby ruby -w tests/run_cases.rb
