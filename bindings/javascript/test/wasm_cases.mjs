// Answers the cases with the npm package, installed, and notes each call of the C API as recorder.py does.

import fs from 'node:fs';
import { DECLARATIONS } from './node_modules/corvale/declarations.js';
import { runCases } from './run_cases.mjs';

const { instantiate } = WebAssembly;
WebAssembly.instantiate = async (...how) => {
  const { exports } = await instantiate(...how);
  const noting = (name, call) => (...values) => {
    const [, type, width, way] = DECLARATIONS[name][1] ?? [];
    const isText = type === 'text' && way === 'in';
    const bytes = isText ? Buffer.from(exports.memory.buffer, values[0], width).toString('hex') : '';
    fs.appendFileSync(process.env.CORVALE_CALLS, `${name} ${bytes}\n`);
    return call(...values);
  };
  return { exports: Object.fromEntries(Object.entries(exports).map(([name, value]) =>
    [name, name in DECLARATIONS ? noting(name, value) : value])) };
};

const { CorvaleError, load } = await import('corvale');
const corvale = await load();
runCases(() => corvale, CorvaleError);
