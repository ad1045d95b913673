#!/usr/bin/env bash
# check-wasm.sh: builds for WebAssembly, with Debian's Clang and WASI's C library, and runs in Node what has
# to give the same bits and the same output: the fuzz targets on random input, with their digests, but
# for those of files; the C API; the examples; the npm package, installed into an empty project.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

folder=$top/build/wasm
examples=(log keys text angles matrices sorting)

need chromium python3
"$top/scripts/build-npm.sh" >/dev/null
grep -vE '^(Cards|Log) ' "$top/tests/cases/digests.txt" >"$folder/digests.txt"

# run PROGRAM ARGUMENT...: in Node, with the working folder for its files.
run() {
    node --no-warnings --experimental-wasi-unstable-preview1 "$top/tests/wasm/run.mjs" "$folder/tests/wasm/$1.wasm" "${@:2}"
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
cp "$folder/digests.txt" "$top/examples/orbit.inp" .
output=$(run digests --digests digests.txt 2>&1) || { echo "$output"; exit 1; }
echo "wasm fuzz targets: ${output##*$'\n'}"
run c_api orbit.inp
echo "wasm C API: all 20 functions, with a log and a card file"
for example in "${examples[@]}"; do
    run "example_$example" | cmp - "$top/examples/$example.out"
    echo "wasm examples/$example: prints what it does elsewhere"
done

mkdir package
cd package
echo '{ "private": true, "type": "module" }' >package.json
npm install --silent --no-audit --no-fund "$top"/build/npm/corvale-*.tgz
cp "$top"/bindings/javascript/test/*.mjs .
export CORVALE_INPUT="$top/examples/orbit.inp"
python3 -B "$top/tests/bindings/check.py" wasm node wasm_cases.mjs
node wasm.mjs

# Its types, and that they name every member of the class and no other.
npm install --silent --no-audit --no-fund typescript@5.9.3
cp "$top/bindings/javascript/test/types.ts" types.mts
node --input-type=module >members.mts <<'END'
import { load } from 'corvale';
const corvale = await load();
const members = new Set(['files']);
for (let type = Object.getPrototypeOf(corvale); type !== Object.prototype; type = Object.getPrototypeOf(type))
  for (const name of Object.getOwnPropertyNames(type)) if (name !== 'constructor') members.add(name);
console.log(`import type { Corvale } from 'corvale';
export const members: Record<keyof Corvale, true> = { ${[...members].map((name) => `${name}: true`).join(', ')} };`);
END
npx --no-install tsc --noEmit --strict --target es2022 --module nodenext --lib es2022,dom types.mts members.mts
echo "WebAssembly: types.ts and $(grep -o ': true' members.mts | wc -l) members: tsc finds nothing"

# In Chromium, in a page and in a worker.
mkdir browser
cp "$top"/bindings/javascript/test/{browser.html,browser_worker.js} "$top/examples/orbit.inp" browser
cp -r node_modules/corvale browser
python3 -u -m http.server --bind 127.0.0.1 --directory browser 0 >server.log 2>&1 &
server=$!
trap 'kill "$server"; rm -rf "$scratch"' EXIT
until port=$(sed -n 's/.* port \([0-9]*\) .*/\1/p' server.log) && [ -n "$port" ]; do sleep 0.1; done
chromium --headless --no-sandbox --disable-gpu --user-data-dir="$scratch/profile" \
    "http://127.0.0.1:$port/browser.html" >browser.log 2>&1 &
browser=$!
trap 'kill "$browser" "$server"; wait "$browser" "$server" || true; rm -rf "$scratch"' EXIT
for _ in {1..300}; do
    result=$(sed -n 's/.*GET \/result=\([^ ]*\).*/\1/p' server.log)
    [ -z "$result" ] || break
    sleep 0.2
done
[ "$result" = 'both%3A%206378.135%20-0.8522008497671888%20A0000' ] || { echo "in Chromium: $result"; cat browser.log; exit 1; }
echo "WebAssembly in Chromium: page and worker load a card file, ok"
