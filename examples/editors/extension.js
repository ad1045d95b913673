// The whole of an extension for Visual Studio Code that starts `corvale lsp`; its package.json names
// this file as "main", activates it "onStartupFinished" and depends on vscode-languageclient.
const { LanguageClient } = require('vscode-languageclient/node')

let client

exports.activate = () => {
  client = new LanguageClient('corvale', { command: 'corvale', args: ['lsp'] },
    { documentSelector: [{ scheme: 'file', pattern: '**/*.inp' }] })
  return client.start()
}

exports.deactivate = () => client.stop()
