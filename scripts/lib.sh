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

# build_wasm [TARGET...]: for WebAssembly into build/wasm, by Debian's Clang with WASI's C library.
build_wasm() {
    need "${build_packages[@]}" clang lld llvm wasi-libc libc++-14-dev-wasm32 libclang-rt-14-dev-wasm32
    local folder=$top/build/wasm
    mkdir -p "$folder"
    (cmake -S "$top" -B "$folder" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$top/cmake/wasm32-wasi.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF -DCORVALE_INSTALL=OFF \
        -DCORVALE_BUILD_TOOLS=OFF -DCORVALE_BUILD_EXAMPLES=OFF -DCORVALE_WARNINGS_AS_ERRORS=ON &&
        cmake --build "$folder" --target "${@:-all}" -- -j 2) >"$folder/build.log" 2>&1 ||
        { cat "$folder/build.log" >&2; return 1; }
}
