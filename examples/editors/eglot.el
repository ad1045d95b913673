;; In init.el: Eglot, which Emacs has from version 29 on, starts `corvale lsp` for files that end in .inp.
(define-derived-mode corvale-mode text-mode "Corvale")
(add-to-list 'auto-mode-alist '("\\.inp\\'" . corvale-mode))
(with-eval-after-load 'eglot
  (add-to-list 'eglot-server-programs '(corvale-mode . ("corvale" "lsp"))))
(add-hook 'corvale-mode-hook #'eglot-ensure)
