#!/usr/bin/env bash
# check-reproducible.sh: builds twice, in two folders, locales and umasks, and compares byte for byte
# what is installed: the release build with one made elsewhere on the same day, and a static library
# with debug information with another. No folder's name may be inside.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

fail() { printf 'check-reproducible: %s\n' "$*" >&2; exit 1; }
need "${build_packages[@]}" git locales
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
localedef -i de_DE -f UTF-8 "$scratch/de_DE.utf8"
elsewhere=(env "LOCPATH=$scratch" LC_ALL=de_DE.utf8)
release=(-DCMAKE_BUILD_TYPE=Release -DCORVALE_BUILD_{TESTS,EXAMPLES}=OFF)
static=(-DCMAKE_BUILD_TYPE=Debug -DBUILD_SHARED_LIBS=OFF -DCORVALE_BASELINE_ONLY=ON
    -DCORVALE_BUILD_{TESTS,TOOLS,EXAMPLES}=OFF)

# build_in SOURCE FOLDER COMMAND...: builds SOURCE in FOLDER; COMMAND runs CMake up to its options.
build_in() {
    local source=$1 folder=$2
    shift 2
    { "$@" -G Ninja -S "$source" -B "$folder" && cmake --build "$folder" -j 2; } \
        >"$scratch/log" 2>&1 || { cat "$scratch/log"; fail "a build fails"; }
}

# same KIND ONE ANOTHER: compares what two builds install.
same() {
    local kind=$1 count=0 file one=$scratch/$1-one another=$scratch/$1-another
    DESTDIR=$one cmake --install "$2" --prefix /usr >"$scratch/log"
    (umask 077 && DESTDIR=$another cmake --install "$3" --prefix /usr >"$scratch/log")
    while IFS= read -r file; do
        [ "$(readlink "$one/$file")" = "$(readlink "$another/$file")" ] || fail "$kind: $file differs"
        cmp "$one/$file" "$another/$file" || fail "$kind: $file differs"
        if grep -qaF -e "$scratch" -e "$top" "$one/$file"; then fail "$kind: $file names a folder"; fi
        count=$((count + 1))
    done < <(cd "$one" && find . ! -type d)
    [ "$count" -gt 30 ] || fail "$kind: only $count files are installed"
    [ "$count" -eq "$(find "$another" ! -type d | wc -l)" ] || fail "$kind: not the same files"
    echo "check-reproducible: $kind: $count installed files are the same, byte for byte"
}

# A compiler cache may rewrite paths on its own.
unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER
mkdir -p "$scratch/another/source"
git -C "$top" ls-files -z | tar -C "$top" --null -T - -c | tar -C "$scratch/another/source" -x

# The release build says its day itself.
build release
day=$("$top/build/release/tools/corvale" info | sed -n 's/.* - Build: \(.\{11\}\) - .*/\1/p')
SOURCE_DATE_EPOCH=$(date -ud "$day" +%s)
export SOURCE_DATE_EPOCH
(umask 077 && build_in "$scratch/another/source" "$scratch/another/release" \
    "${elsewhere[@]}" cmake "${release[@]}")
same release "$top/build/release" "$scratch/another/release"

build_in "$top" "$scratch/static" cmake "${static[@]}"
build_in "$scratch/another/source" "$scratch/another/static" "${elsewhere[@]}" cmake "${static[@]}"
same static "$scratch/static" "$scratch/another/static"
