#!/usr/bin/env bash
# test.sh: builds the Rust binding, runs its example and its test (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

export CARGO_TARGET_DIR=../../build/bindings/rust
cargo run --quiet --offline --example load_file -- "$CORVALE_INPUT" |
    grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 -B ../../tests/bindings/check.py rust cargo test --quiet --offline --test run_cases
