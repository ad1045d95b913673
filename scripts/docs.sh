#!/usr/bin/env bash
# docs.sh: runs the first programs of the guide as a new user would, builds the documentation site into
# build/site, follows its links and searches it. Any warning of Doxygen is a failure. The menu is
# docs/site/pages.txt.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
cd "$top"

echo "docs.sh: runs the guide's first programs and builds the site in build/site"
need "${build_packages[@]}" doxygen python3 python3-lxml chromium pkg-config gfortran
command -v node >/dev/null || need nodejs
command -v npm >/dev/null || need npm
python3 -B tests/examples/check_guide.py .
bash tests/examples/first_programs.sh "$top"

pages=$(python3 -B docs/site/menu.py)
version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' CMakeLists.txt)
rm -rf build/doxygen
mkdir -p build/doxygen build/site-modules
{
    cat docs/doxygen/Doxyfile
    echo "PROJECT_NUMBER = $version"
    echo "OUTPUT_DIRECTORY = build/doxygen"
    sed 's|^|INPUT += |' <<<"$pages"
    python3 -B tests/house/check_house.py --headers . | sed 's|^|INPUT += corvale/|'
} | doxygen - >build/doxygen.log 2>&1 || { cat build/doxygen.log >&2; exit 1; }
if [ -s build/doxygen.log ]; then cat build/doxygen.log >&2; exit 1; fi

# The search, a script that runs in the page.
cp docs/site/{package.json,package-lock.json,.npmrc} build/site-modules
cd build/site-modules
if ! cmp -s package-lock.json installed.json; then
    npm ci --ignore-scripts --no-audit --no-fund --loglevel=error >/dev/null
    cp package-lock.json installed.json
fi
cd "$top"
/usr/bin/python3 -B docs/site/build_site.py build/doxygen build/site "$version" \
    build/site-modules/node_modules/minisearch/dist/umd/index.js

# What the page "Try it" loads.
build_wasm corvale_try
cp build/wasm/tools/wasm/try.wasm bindings/javascript/wasm/wasi.js examples/*.inp build/site/try-it

python3 -B docs/site/check_links.py build/site
node docs/site/check_search.mjs build/site

# The page itself, opened as a file.
profile=$(mktemp -d)
trap 'rm -rf "$profile"' EXIT
chromium --headless --no-sandbox --disable-gpu --user-data-dir="$profile" --virtual-time-budget=10000 \
    --dump-dom "file://$top/build/site/index.html?q=sort+keys" 2>"$profile/log" >"$profile/page"
grep -q 'id="found".*<a href="guide_sorting.html"' "$profile/page" || { cat "$profile"/{log,page}; exit 1; }
echo 'search "sort keys" in Chromium: ok'
