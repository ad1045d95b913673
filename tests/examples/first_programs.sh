#!/usr/bin/env bash
# first_programs.sh CHECKOUT [--write]: builds and installs Corvale by the commands of the guide's first
# page, runs those that it shows for each language on the programs that it shows, and compares what
# they print with examples/NAME.out, or writes that. One line each; 1 if one differs.
set -euo pipefail
checkout=$1 status=0
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/installed
export PYTHONDONTWRITEBYTECODE=1

source "$checkout/examples/first_install.sh" >"$scratch/install.log" 2>&1 ||
    { cat "$scratch/install.log" >&2; exit 1; }
export checkout prefix
for name in first_load first_own first_c first_cpp first_cmake first_python first_fortran filters differences; do
    folder=$scratch/$name
    mkdir "$folder"
    cp -r "$checkout"/examples/{own.c,own.cpp,load_file.c,load_file.cpp,orbit.inp,own_program} \
        "$checkout"/bindings/{python/examples/load_file.py,fortran/examples/load_file.f90} "$folder"
    cp "$checkout/examples/load_file.c" "$folder/own_program"
    (cd "$folder" && bash -euo pipefail "$checkout/examples/$name.sh") >"$folder/printed" || status=1
    [ "${2-}" != --write ] || cp "$folder/printed" "$checkout/examples/$name.out"
    if diff "$checkout/examples/$name.out" "$folder/printed"; then echo "$name: ok"; else status=1; fi
done
exit $status
