// Runs a WebAssembly program with Node's WASI; it sees the working folder and its own arguments:
//
//     node run.mjs PROGRAM.wasm ARGUMENT...
import { readFile } from 'node:fs/promises';
import { argv, exit } from 'node:process';
import { WASI } from 'node:wasi';

const wasi = new WASI({ version: 'preview1', args: argv.slice(2), preopens: { '.': '.' }, returnOnExit: true });
const module = await WebAssembly.compile(await readFile(argv[2]));
const instance = await WebAssembly.instantiate(module, wasi.getImportObject());
exit(wasi.start(instance));
