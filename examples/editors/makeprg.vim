" In vimrc: `:make %` puts the findings into the quickfix list, `:cnext` goes to the next one.
autocmd BufRead,BufNewFile *.inp setlocal makeprg=corvale\ check\ --format\ short
autocmd BufRead,BufNewFile *.inp setlocal errorformat=%f:%l:%c:\ %trror[%*[^]]]:\ %m,%f:%l:%c:\ %tarning[%*[^]]]:\ %m,%f:%l:%c:\ %tote[%*[^]]]:\ %m
