-- In init.lua: `corvale lsp` for files that end in .inp.
vim.api.nvim_create_autocmd({ 'BufRead', 'BufNewFile' }, {
  pattern = '*.inp',
  callback = function()
    local config = { name = 'corvale', cmd = { 'corvale', 'lsp' } }
    if vim.lsp.start then
      vim.lsp.start(config)
    else -- before Neovim 0.8
      vim.lsp.buf_attach_client(0, vim.lsp.start_client(config))
    end
  end,
})
