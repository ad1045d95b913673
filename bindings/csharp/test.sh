#!/usr/bin/env bash
# test.sh: builds the C# binding, runs its example and its test (scripts/test-bindings.sh calls it).
set -euo pipefail
cd "$(dirname "$0")"

out=../../build/bindings/csharp
sources=(Loader.cs Api.cs Texts.cs Values.cs Library.cs)
mkdir -p "$out"
compile() { mcs -nologo -warn:4 -warnaserror "$@"; }
compile -r:System.Core.dll -target:library -doc:"$out/Corvale.xml" -out:"$out/Corvale.dll" "${sources[@]}"
compile -r:"$out/Corvale.dll" -out:"$out/LoadFile.exe" LoadFile.cs
compile -r:"$out/Corvale.dll" -out:"$out/RunCases.exe" tests/RunCases.cs

mono "$out/LoadFile.exe" "$CORVALE_INPUT" | grep -x 'element-set key mode 1, all-key mode 1' >/dev/null
python3 -B ../../tests/bindings/check.py csharp mono "$out/RunCases.exe"
