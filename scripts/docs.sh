#!/usr/bin/env bash
# docs.sh: runs the first programs of the guide as a new user would, builds the documentation site into
# build/site and checks its links. Any warning of Doxygen is a failure.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
cd "$top"

echo "docs.sh: runs the guide's first programs and builds the site in build/site"
need "${build_packages[@]}" doxygen python3 pkg-config gfortran
python3 -B tests/examples/check_guide.py .
bash tests/examples/first_programs.sh "$top"

# The order of the pages in the menu.
pages=(docs/guide/{start,getting_started,log,cards,program,keys,text,angles,matrices,sorting,threads,exactness}.md
    docs/architecture.md docs/benchmarks.md docs/benchmark-figures.md bindings/README.md docs/c-interface.md
    docs/doxygen/corvale.dox)
for page in docs/guide/*.md docs/*.md; do
    case " ${pages[*]} " in *" $page "*) ;; *) pages+=("$page") ;; esac
done
rm -rf build/site
mkdir -p build/site
version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' CMakeLists.txt)
{
    cat docs/doxygen/Doxyfile
    echo "PROJECT_NUMBER = $version"
    echo "OUTPUT_DIRECTORY = build/site"
    printf 'INPUT += %s\n' "${pages[@]}"
    python3 -B tests/house/check_house.py --headers . | sed 's|^|INPUT += corvale/|'
} | doxygen - >build/doxygen.log 2>&1 || { cat build/doxygen.log >&2; exit 1; }
if [ -s build/doxygen.log ]; then cat build/doxygen.log >&2; exit 1; fi
python3 -B docs/doxygen/mend_site.py build/site
python3 -B docs/doxygen/check_links.py build/site
