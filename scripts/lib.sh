# Shared by the scripts: the checkout's folder, and what a bare Debian 12 machine lacks.
# Sourced, not run.
# shellcheck shell=bash disable=SC2034

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# need PACKAGE...: installs those that are missing, as root or with sudo.
need() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
            missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "installing: ${missing[*]}"
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

build_packages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev)

# build PRESET [CMAKE-OPTION...] [--target TARGET...]: configures and builds into build/PRESET, all of
# it or those targets; prints only what fails.
build() {
    local preset=$1 log options=()
    shift
    while [ $# -gt 0 ] && [ "$1" != --target ]; do
        options+=("$1")
        shift
    done
    log=$(mktemp)
    (cd "$top" && cmake --preset "$preset" "${options[@]}" &&
        cmake --build --preset "$preset" "$@") >"$log" 2>&1 || { cat "$log"; return 1; }
    rm -f "$log"
}
