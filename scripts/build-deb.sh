#!/usr/bin/env bash
# build-deb.sh: builds the Debian packages libcorvale9, libcorvale-dev and corvale-tools from what
# is committed, into build/deb, and lets lintian judge them.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
need "${build_packages[@]}" debhelper dpkg-dev lintian git python3 pkg-config

version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' "$top/CMakeLists.txt")
packaged=$(dpkg-parsechangelog -l "$top/packaging/debian/changelog" -S Version)
[ "$packaged" = "$version-${packaged##*-}" ] ||
    { echo "build-deb.sh: the changelog says $packaged, the library is $version" >&2; exit 1; }

out="$top/build/deb"
rm -rf "$out" && mkdir -p "$out/corvale-$version"
git -C "$top" archive --format=tar --prefix="corvale-$version/" HEAD |
    gzip -n >"$out/corvale_$version.orig.tar.gz"
tar -xzf "$out/corvale_$version.orig.tar.gz" -C "$out"
cp -r "$out/corvale-$version/packaging/debian" "$out/corvale-$version/debian"

(cd "$out/corvale-$version" && DEB_BUILD_OPTIONS="${DEB_BUILD_OPTIONS:-} parallel=2" \
    dpkg-buildpackage -us -uc >"$out/build.log" 2>&1) || { tail -n 60 "$out/build.log"; exit 1; }
lintian --fail-on error --tag-display-limit 0 "$out"/*.changes
ls -l "$out"/*.deb
