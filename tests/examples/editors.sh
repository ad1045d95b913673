#!/usr/bin/env bash
# editors.sh EDITOR SOURCE PROGRAM: opens a faulty file in an editor that is set up with the lines of the
# guide, and reads back what it shows. Ends with 77 where the editor is not installed.
#     neovim   diagnostics, a hint and a quick fix of the language server
#     makeprg  Vim's list of findings
#     eglot    diagnostics in Emacs
#     tasks    the problem matcher is the one that a test compares with what corvale prints
#     extension  what the extension for Visual Studio Code starts, by Node
set -euo pipefail

editor=$1 settings=$2/examples/editors
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { printf 'editors.sh: %s: %s\n' "$editor" "$*" >&2; exit 1; }
ln -s "$3" "$scratch/corvale"
export PATH=$scratch:$PATH HOME=$scratch XDG_CONFIG_HOME=$scratch
cd "$scratch"
printf 'QZ_DMA_ON\n QZ_DMA_ALL_ON\nQZ_MOIC 1.5 x\n' >cards.inp
want() { [ "$(cat said)" = "$1" ] || fail "said: $(cat said)"; }

case $editor in
neovim)
    command -v nvim >/dev/null || exit 77
    cat >try.lua <<'LUA'
local said = {}
local function say(text) table.insert(said, text) end
local function request(method, params)
  local answers = vim.lsp.buf_request_sync(0, method, params, 10000)
  return select(2, next(answers)).result
end
vim.wait(10000, function() return #vim.diagnostic.get(0) == 2 end, 20)
for _, each in ipairs(vim.diagnostic.get(0)) do
  say(each.lnum + 1 .. ':' .. each.col + 1 .. ' ' .. each.code .. ' ' .. each.severity)
end
vim.api.nvim_win_set_cursor(0, { 3, 9 })
say(request('textDocument/hover', vim.lsp.util.make_position_params()).contents.value)
vim.api.nvim_win_set_cursor(0, { 2, 0 })
local params = vim.lsp.util.make_range_params()
params.context = { diagnostics = {} }
local action = request('textDocument/codeAction', params)[1]
say(action.title)
vim.lsp.util.apply_workspace_edit(action.edit, 'utf-16')
say(vim.api.nvim_buf_get_lines(0, 1, 2, true)[1])
vim.wait(10000, function() return #vim.diagnostic.get(0) == 1 end, 20)
say(#vim.diagnostic.get(0) .. ' left')
vim.fn.writefile(said, 'said')
vim.cmd('qall!')
LUA
    timeout 60 nvim --headless -u "$settings/neovim.lua" cards.inp -c 'luafile try.lua' 2>log || fail "$(cat log)"
    want "2:2 not-in-column-1 2
3:13 not-a-number 2
QZ_MOIC sets value 1; value 1 is 1.5
move the keyword to column 1
QZ_DMA_ALL_ON
1 left"
    ;;
makeprg)
    command -v vim >/dev/null || exit 77
    timeout 60 vim -N -i NONE -es -u "$settings/makeprg.vim" cards.inp -c 'silent! make %' \
        -c 'call writefile(map(getqflist(), {_, each -> bufname(each.bufnr) .. ":" .. each.lnum .. ":" .. each.col .. " " .. each.type .. " " .. each.text}), "said")' \
        -c 'qall!' || true
    want "cards.inp:2:2 w QZ_DMA_ALL_ON is not read as a card: it begins in column 2, behind a blank
cards.inp:3:13 w QZ_MOIC value 2, \"x\", is not a number; values 2 to 128 keep what they held"
    ;;
eglot)
    command -v emacs >/dev/null || exit 77
    emacs --batch --eval "(require 'eglot)" 2>/dev/null || exit 77
    cat >try.el <<'LISP'
(require 'eglot)
(setq eglot-sync-connect t)
(find-file "cards.inp")
(call-interactively #'eglot)
(let ((tries 200))
  (while (and (> tries 0) (/= (length (flymake-diagnostics)) 2))
    (accept-process-output nil 0.05)
    (setq tries (1- tries))))
(write-region (mapconcat (lambda (each) (flymake-diagnostic-text each))
                         (sort (flymake-diagnostics) (lambda (a b) (< (flymake-diagnostic-beg a) (flymake-diagnostic-beg b))))
                         "\n")
              nil "said")
(kill-emacs 0)
LISP
    timeout 60 emacs --batch -l "$settings/eglot.el" -l try.el >log 2>&1 || fail "$(cat log)"
    grep -q 'behind a blank' said && grep -q 'is not a number' said || fail "said: $(cat said)"
    ;;
tasks)
    python3 -B - "$settings/tasks.json" "$2/packaging/editors/problem-matcher.json" <<'PYTHON'
import json, sys
tasks, matchers = (json.load(open(name, encoding="utf-8")) for name in sys.argv[1:])
assert tasks["tasks"][0]["problemMatcher"]["pattern"] == matchers["problemMatcher"][0]["pattern"][0]
PYTHON
    ;;
extension)
    command -v node >/dev/null || exit 77
    mkdir -p node_modules/vscode-languageclient
    cat >node_modules/vscode-languageclient/node.js <<'JS'
exports.LanguageClient = class {
  constructor(name, server) { this.server = server }
  start() { console.log(this.server.command, ...this.server.args) }
  stop() { console.log('stopped') }
}
JS
    cp "$settings/extension.js" .
    node -e "const e = require('./extension.js'); e.activate(); e.deactivate()" >said
    want "corvale lsp
stopped"
    ;;
*)
    fail "no such editor"
    ;;
esac
