#!/usr/bin/env bash
# test.sh: runs the example and the test of the Perl binding (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

perl -Ilib load_file.pl "$CORVALE_INPUT" | grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
podchecker -warnings lib/Corvale.pm 2>/dev/null
python3 -B ../../tests/bindings/check.py perl perl -Ilib tests/run_cases.pl
