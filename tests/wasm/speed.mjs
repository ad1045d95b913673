// Runs two programs by turns and prints the medians of what they measure, side by side:
//
//     node speed.mjs NATIVE WASM BYTES FILE    BYTES of FILE, which both load

import { spawnSync } from 'node:child_process';
import { argv, execPath } from 'node:process';

const ROUNDS = 5;
const [native, wasm, bytes, file] = argv.slice(2);
const runner = new URL('run.mjs', import.meta.url).pathname;
const commands = {
  native: [native, [file]],
  WebAssembly: [execPath, ['--no-warnings', '--experimental-wasi-unstable-preview1', runner, wasm, file]],
};

const times = new Map(); // by what is measured, by program
for (let round = 0; round < ROUNDS; ++round) {
  for (const [program, [command, args]] of Object.entries(commands)) {
    const { stdout, status } = spawnSync(command, args, { encoding: 'utf8' });
    if (status !== 0) throw new Error(`${program}: status ${status}`);
    for (const [what, time] of stdout.trim().split('\n').map((line) => line.split(' '))) {
      if (!times.has(what)) times.set(what, { native: [], WebAssembly: [] });
      times.get(what)[program].push(Number(time));
    }
  }
}

const median = (values) => values.sort((a, b) => a - b)[values.length >> 1];
for (const [what, byProgram] of times) {
  const [here, there] = [median(byProgram.native), median(byProgram.WebAssembly)];
  const shown = (time) => (what === 'load' ? `${((bytes / time) * 1e3).toFixed(0)} MB/s` : `${(time / 1e3).toFixed(2)} us`);
  console.log(`${what}: native ${shown(here)}, WebAssembly ${shown(there)}, ${(there / here).toFixed(2)} times as long`);
}
