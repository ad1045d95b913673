#!/usr/bin/env bash
# check-program.sh: builds the program corvale, installs it, and tries its man page and completions in
# the shells that they are for: nothing to complain of, and "corvale lo" becomes load. What it says in SARIF
# is compared with the schema, which a package of npm carries.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

echo "check-program.sh: the man page, the completions, the SARIF and the editors of corvale"
need "${build_packages[@]}" libgtest-dev man-db groff-base zsh fish python3-jsonschema neovim vim
command -v npm >/dev/null || need npm
build release -DCORVALE_BUILD_TESTS=ON
build=$top/build/release
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { printf 'check-program.sh: %s\n' "$*" >&2; exit 1; }

cmake --install "$build" --prefix "$scratch" >/dev/null
page=$scratch/share/man/man1/corvale.1
bash_file=$scratch/share/bash-completion/completions/corvale
zsh_file=$scratch/share/zsh/site-functions/_corvale
fish_file=$scratch/share/fish/vendor_completions.d/corvale.fish
commands=$("$build/tools/corvale" --help | sed -nE 's/^  ([a-z][a-z0-9]+) {5,}.*/\1/p')
[ "$(wc -w <<<"$commands")" -eq 14 ] || fail "not 14 commands: $commands"

# --- the man page
for device in utf8 ascii; do
    complaints=$(groff -ww -b -man -T"$device" "$page" 2>&1 >"$scratch/page.$device") || true
    [ -z "$complaints" ] || fail "groff: $complaints"
done
complaints=$(MANWIDTH=80 man --warnings -l "$page" 2>&1 >/dev/null) || true
[ -z "$complaints" ] || fail "man: $complaints"
MANWIDTH=80 man -P cat -l "$page" | sed 's/.\x08//g' >"$scratch/text"
for words in $commands 'no findings' 'LOGFILE' "echo 'a\\\\b\\\\c' | corvale replace '\\\\' /" 'FILE\.\.\.'; do
    grep -q -- "$words" "$scratch/text" || fail "the man page does not hold: $words"
done
if awk 'length > 84' "$scratch/text" | grep .; then fail "lines of the man page are too long"; fi

# --- bash
bash -n "$bash_file"
in_bash() {
    bash -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _corvale; echo "${COMPREPLY[*]}"' \
        - "$bash_file" "$@"
}
cd "$scratch"
touch orbit.inp 'two words.inp'
[ "$(in_bash corvale lo)" = "load lower" ] || fail "bash: lo: $(in_bash corvale lo)"
[ "$(in_bash corvale loa)" = load ] || fail "bash: loa"
[ "$(in_bash corvale load --js)" = --json ] || fail "bash: --js"
[ "$(in_bash corvale load orb)" = orbit.inp ] || fail "bash: a file"
[ "$(in_bash corvale check two)" = "two words.inp" ] || fail "bash: a file of two words"
[ "$(in_bash corvale load --log orb)" = orbit.inp ] || fail "bash: the log file"
[ "$(in_bash corvale alpha5 --file orb)" = orbit.inp ] || fail "bash: the file of a filter"
[ -z "$(in_bash corvale alpha5 orb)" ] || fail "bash: alpha5 takes values"
for command in $commands; do
    [[ " $(in_bash corvale '') " == *" $command "* ]] || fail "bash: $command is missing"
done

# --- zsh
zsh -n "$zsh_file"
cat >"$scratch/zsh_test" <<'ZSH'
# Types $2 and a tab into an interactive zsh and prints what the line has become.
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell "PS1=; fpath=($1 \$fpath); autoload -U compinit; compinit -D -u"
zpty -w shell "show() { print -r -- \"<line>\$BUFFER</line>\"; BUFFER= }; zle -N show; bindkey '^X' show"
zpty -w shell "print ready''now"
zpty -r -m shell seen '*readynow*'
zpty -w -n shell "$2"$'\t\x18'
zpty -r -m shell seen '*</line>*'
zpty -d shell
seen=${seen##*'<line>'}
print -r -- "${seen%%'</line>'*}"
ZSH
in_zsh() { TERM=dumb timeout 60 zsh -f "$scratch/zsh_test" "$(dirname "$zsh_file")" "$1"; }
[ "$(in_zsh 'corvale loa')" = 'corvale load ' ] || fail "zsh: loa: $(in_zsh 'corvale loa')"
[ "$(in_zsh 'corvale load --js')" = 'corvale load --json ' ] || fail "zsh: --js"
[ "$(in_zsh 'corvale check orb')" = 'corvale check orbit.inp ' ] || fail "zsh: a file"

# --- fish
fish --no-execute "$fish_file"
export HOME=$scratch XDG_CONFIG_HOME=$scratch XDG_DATA_HOME=$scratch
in_fish() { fish --no-config -c 'source $argv[1]; complete -C "$argv[2]"' "$fish_file" "$1" | cut -f1 | xargs; }
[ "$(in_fish 'corvale lo')" = "load lower" ] || fail "fish: lo: $(in_fish 'corvale lo')"
[ "$(in_fish 'corvale load --js')" = --json ] || fail "fish: --js: $(in_fish 'corvale load --js')"
[ "$(in_fish 'corvale load orb')" = orbit.inp ] || fail "fish: a file: $(in_fish 'corvale load orb')"
[ -z "$(in_fish 'corvale alpha5 orb')" ] || fail "fish: alpha5 takes values"

# --- SARIF, with findings and a file that is not there, and without any
cd "$scratch"
npm pack --silent @microsoft/jest-sarif@1.0.0-beta.0 >npm.log || { cat npm.log >&2; fail "the schema is not there"; }
tar -xzf microsoft-jest-sarif-*.tgz --wildcards --strip-components=3 'package/lib/schemas/sarif-2.1.0*.json'
"$build/tools/corvale" check --format sarif "$top"/examples/*.inp missing >findings.sarif 2>/dev/null && fail "no findings"
"$build/tools/corvale" check --format sarif /dev/null >clean.sarif
/usr/bin/python3 -B - sarif-2.1.0*.json findings.sarif clean.sarif <<'PYTHON'
import json, sys
import jsonschema
schema, *logs = (json.load(open(name, encoding="utf-8")) for name in sys.argv[1:])
for log in logs:
    jsonschema.Draft4Validator(schema).validate(log)
assert [len(log["runs"][0]["results"]) > 20 for log in logs] == [True, False]
PYTHON

# --- the guide's lines for editors
for editor in neovim makeprg; do bash "$top/tests/examples/editors.sh" $editor "$top" "$build/tools/corvale" >/dev/null; done
echo "check-program.sh: all well"
