#!/usr/bin/env bash
# check-deb.sh: installs the packages of build-deb.sh in a new, bare Debian root, runs the program
# there, and runs their installed test: programs that find, build with and run the library.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
need mmdebstrap
[ "$(id -u)" -eq 0 ] || { echo "check-deb.sh: a new root can only be made by root" >&2; exit 1; }

packages="$top/build/deb"
[ -n "$(find "$packages" -name 'libcorvale9_*.deb' 2>/dev/null)" ] || "$top/scripts/build-deb.sh"
root="$top/build/deb-root"
rm -rf "$root" && mkdir -p "$root"
# The new root takes this machine's sources and its settings for them.
mmdebstrap --quiet --variant=apt --mode=root \
    --include="$(sed -n 's/^Depends: \(libcorvale-dev, corvale-tools, \)*//p' \
        "$top/packaging/debian/tests/control")" \
    "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$root" - < <(cat /etc/apt/sources.list \
        /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources 2>/dev/null)

cp "$packages"/libcorvale9_*.deb "$packages"/libcorvale-dev_*.deb "$packages"/corvale-tools_*.deb "$root/tmp/"
cp "$top/packaging/debian/tests/consumers" "$top/examples/orbit.inp" "$root/tmp/"
chroot "$root" sh -ec '
    dpkg -i /tmp/*.deb >/dev/null
    corvale info
    corvale selftest
    corvale load /tmp/orbit.inp | head -n 3
    cd /tmp && ./consumers
    dpkg -r corvale-tools libcorvale-dev libcorvale9 >/dev/null
    test -z "$(find /usr -name "*[Cc]orvale*")"'
echo "check-deb.sh: installed, used and removed without a trace"
