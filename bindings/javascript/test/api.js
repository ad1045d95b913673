// Walks the table of the C API and proves that this binding declares and calls all of it.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import koffi from 'koffi';
import { CApi } from '../c_api.js';
import { Corvale, CorvaleError } from '../corvale.js';
import { DECLARATIONS } from '../declarations.js';
import { runParts } from './parts.js';

// Every function that the binding finds in the library records that it was called.
const called = new Set();
const { load } = koffi;
koffi.load = (...how) => {
  const library = load(...how);
  const func = (name, ...types) => {
    const call = library.func(name, ...types);
    return (...values) => {
      called.add(name);
      return call(...values);
    };
  };
  return { func };
};

// The types declare what there is.
const declared = fs.readFileSync(new URL('../c_api.d.ts', import.meta.url), 'utf8').split('export class CApi')[1];
const names = [...declared.matchAll(/^  (?:protected )?(\w+)[(:]/gm)].map((match) => match[1]);
assert.deepEqual(names.sort(), Object.getOwnPropertyNames(CApi.prototype).sort());

const checked = runParts({ corvale: new Corvale(), CorvaleError, DECLARATIONS });
assert.throws(() => new Corvale('no-such.so'), /no-such\.so/);
assert.throws(() => new Corvale('libc.so.6'), /CorvaleInit/);
assert.deepEqual([...called].sort(), Object.keys(DECLARATIONS).sort());
console.log(`JavaScript: ${called.size} of 20 functions called, ${checked} arguments checked, ok`);
