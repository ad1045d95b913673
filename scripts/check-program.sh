#!/usr/bin/env bash
# check-program.sh: builds the program corvale and tries its man page and its completions in the
# shells that they are for.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

echo "check-program.sh: the man page and the completions of corvale"
need "${build_packages[@]}" libgtest-dev man-db groff-base zsh fish
build release -DCORVALE_BUILD_TESTS=ON
exec "$top/tests/tools/pages.sh" "$top/build/release"
