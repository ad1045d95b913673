// The built site by a server that does nothing but hand out files, and remembers which.

import fs from 'node:fs/promises';
import http from 'node:http';
import path from 'node:path';

const TYPES = { '.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.wasm': 'application/wasm', '.svg': 'image/svg+xml' };

export async function serve(folder) {
  const handedOut = []; // { name, bytes }
  const server = http.createServer(async ({ url }, answer) => {
    const name = path.join(folder, path.normalize(decodeURIComponent(new URL(url, 'http://localhost').pathname)));
    try {
      const content = await fs.readFile(name);
      handedOut.push({ name: path.relative(folder, name), bytes: content.length });
      answer.writeHead(200, { 'content-type': TYPES[path.extname(name)] ?? 'text/plain' }).end(content);
    } catch {
      answer.writeHead(404).end();
    }
  });
  await new Promise((listens) => server.listen(0, '127.0.0.1', listens));
  return { address: `http://127.0.0.1:${server.address().port}`, handedOut, close: () => server.close() };
}
