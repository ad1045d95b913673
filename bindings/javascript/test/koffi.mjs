// Answers the cases with the binding for Node, whose types have to declare what there is.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import { CApi } from '../c_api.js';
import { Corvale, CorvaleError } from '../corvale.js';
import { runCases } from './run_cases.mjs';

const declared = fs.readFileSync(new URL('../c_api.d.ts', import.meta.url), 'utf8').split('export class CApi')[1];
const names = [...declared.matchAll(/^  (?:protected )?(\w+)[(:]/gm)].map((match) => match[1]);
assert.deepEqual(names.sort(), Object.getOwnPropertyNames(CApi.prototype).sort());

runCases((path) => new Corvale(path), CorvaleError);
