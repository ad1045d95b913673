#!/usr/bin/env bash
# test.sh: builds the Java binding, runs its example and its test (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

out=../../build/bindings/java
jna=/usr/share/java/jna.jar
mkdir -p "$out"
javac -Xlint:all -Werror -cp "$jna" -d "$out" corvale/*.java LoadFile.java tests/RunCases.java
run=(java -XX:TieredStopAtLevel=1 -cp "$out:$jna")
"${run[@]}" LoadFile "$CORVALE_INPUT" | grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 -B ../../tests/bindings/check.py java "${run[@]}" corvale.RunCases
