#!/usr/bin/env bash
# test.sh: builds the Go binding, runs its example and its test (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

export GOFLAGS=-buildvcs=false GOPROXY=off GOTOOLCHAIN=local
out=../../build/bindings/go
mkdir -p "$out"
go build -o "$out/load_file" ./example
"$out/load_file" "$CORVALE_INPUT" | grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
go vet ./...
go build -o "$out/run_cases" ./tests
python3 -B ../../tests/bindings/check.py go "$out/run_cases"
