/**
 * Corvale in JavaScript without a native part: the library as WebAssembly, in Node, browsers and workers.
 *
 *     import { load } from 'corvale';
 *     const corvale = await load();
 *     corvale.files.write('orbit.inp', text);    // a browser's files are in memory; Node has its own
 *     corvale.loadFile('orbit.inp');
 *     const values = corvale.moicData(128);
 *
 * Each load() has a state of its own: messages, log, modes and values. Results are the same to the last bit as
 * those of the library everywhere else.
 */

import { CApi } from './c_api.js';
import { checkedFunctions, isByValue, TYPES } from './declarations.js';
import { MemoryFiles, SystemFiles } from './files.js';
import { wasiImports } from './wasi.js';

export { CorvaleError } from './c_api.js';
export { MemoryFiles } from './files.js';

const CODE_WIDTH = 5, DEGREES_WIDTH = 11, HOURS_WIDTH = 7;

const isNode = typeof process === 'object' && process.versions?.node !== undefined;

/** The module's memory, as far as one call needs it. */
class Memory {
  #exports;
  #taken = [];

  constructor(exports) {
    this.#exports = exports;
  }

  /** An address for so many bytes, until `free`. */
  take(bytes) {
    const address = this.#exports.malloc(Math.max(bytes, 1));
    if (address === 0) throw new RangeError(`no memory for ${bytes} bytes`);
    this.#taken.push(address);
    return address;
  }

  /** The address of a copy of a typed array. */
  copy(array) {
    const address = this.take(array.byteLength);
    this.view(address, array).set(array);
    return address;
  }

  /** The memory at an address, as an array like this one. */
  view(address, { constructor, length }) {
    return new constructor(this.#exports.memory.buffer, address, length);
  }

  free() {
    for (const address of this.#taken) this.#exports.free(address);
    this.#taken = [];
  }
}

/** Calls `act` with memory, which is given back afterwards. */
function withMemory(exports, act) {
  const memory = new Memory(exports);
  try {
    return act(memory);
  } finally {
    memory.free();
  }
}

/** Arrays go into the module's memory and, unless they only go in, come back. */
function bindFunction(exports, name, declared) {
  const byValue = declared.map(isByValue);
  return (...values) => withMemory(exports, (memory) => {
    const passed = values.map((value, k) => (byValue[k] ? value : memory.copy(value)));
    const result = exports[name](...passed);
    declared.forEach(([, , , way], k) => {
      if (!byValue[k] && way !== 'in') values[k].set(memory.view(passed[k], values[k]));
    });
    return result;
  });
}

function characters(text) {
  const wrong = String(text).search(/[^\0-\xff]/);
  if (typeof text !== 'string' || wrong >= 0) throw new TypeError(`${JSON.stringify(text)}: not a text of single bytes`);
  return Uint8Array.from(text, (character) => character.charCodeAt(0));
}

const textOf = (bytes) => Array.from(bytes, (byte) => String.fromCharCode(byte)).join('');

function checkInteger(value) {
  if (!TYPES.int32.fits(value)) throw new TypeError(`${value} is no 32-bit integer`);
}

function reals(value, name) {
  if (value instanceof Float64Array) return value;
  if (Array.isArray(value) && value.every((x) => typeof x === 'number')) return Float64Array.from(value);
  throw new TypeError(`${name}: not a Float64Array or an array of numbers`);
}

/** The order of a square matrix with so many elements. */
function orderOf(matrix, name) {
  const order = Math.sqrt(matrix.length);
  if (!Number.isInteger(order)) throw new TypeError(`${name}: ${matrix.length} elements are no square`);
  return order;
}

/** The library. Made by `load`. */
export class Corvale extends CApi {
  #exports;
  /** The files that it sees: a MemoryFiles, or in Node those of the system. */
  files;

  constructor(exports, files) {
    super(checkedFunctions((name, _result, declared) => bindFunction(exports, name, declared)));
    this.#exports = exports;
    this.files = files;
  }

  /** Satellite numbers and their codes of five characters; '*****' where there is none, 0 for no code. */
  numToAlpha5(number) {
    checkInteger(number);
    return this.#written('numToAlpha5', CODE_WIDTH, number);
  }
  alpha5ToNum(code) {
    return this.#ofText('alpha5ToNum', code);
  }

  /** The number in a field, 0 where there is none. */
  strToReal(field) {
    return this.#ofText('strToReal', field);
  }
  strToInt(field) {
    return this.#ofText('strToInt', field);
  }

  /** A row of comma-separated values without useless blanks and zeros. */
  compressCsvLine(line) {
    return withMemory(this.#exports, (memory) => {
      const bytes = characters(line);
      const address = memory.copy(bytes);
      this.#exports.compressCsvLine(address, bytes.length);
      return textOf(memory.view(address, bytes)).trimEnd();
    });
  }

  /** Degrees as sDDMMSS.SSS and as HHMMSSs. */
  degToDDMMSSSSSStr(degrees) {
    return this.#written('degToDDMMSSSSSStr', DEGREES_WIDTH, Number(degrees));
  }
  degToHHMMSSSStr(degrees) {
    return this.#written('degToHHMMSSSStr', HOURS_WIDTH, Number(degrees));
  }

  /** Of a number a number, of an array a Float64Array. Radians. */
  fMod2P(x) { return this.#ofReals('fMod2P', x); }
  acSin(x) { return this.#ofReals('acSin', x); }
  cubRt(x) { return this.#ofReals('cubRt', x); }
  serExp(x) { return this.#ofReals('serExp', x); }
  acTan(s, c) { return this.#ofReals('acTan', s, c); }
  deltaAngleLT180(a, b) { return this.#ofReals('deltaAngleLT180', a, b); }

  /** Correctly rounded functions. */
  sin(x) { return this.#ofReals('sin', x); }
  cos(x) { return this.#ofReals('cos', x); }
  arcTan(x) { return this.#ofReals('arcTan', x); }
  arcTan2(y, x) { return this.#ofReals('arcTan2', y, x); }
  arcCos(x) { return this.#ofReals('arcCos', x); }
  exp(x) { return this.#ofReals('exp', x); }
  cubeRoot(x) { return this.#ofReals('cubeRoot', x); }

  /** Inverse and solution of A x = b, A symmetric and positive definite, n x n elements column by column. */
  cholesky(a, b) {
    const matrix = reals(a, 'a'), right = reals(b, 'b');
    const n = orderOf(matrix, 'a');
    if (right.length !== n) throw new TypeError(`b: ${right.length} elements, ${n} needed`);
    return withMemory(this.#exports, (memory) => {
      const inverse = memory.take(matrix.byteLength), x = memory.take(right.byteLength);
      this.#exports.cholesky(memory.copy(matrix), memory.copy(right), n, inverse, x);
      return { inverse: memory.view(inverse, matrix).slice(), x: memory.view(x, right).slice() };
    });
  }

  /** The inverse of a matrix, n x n elements column by column. */
  mtxInv(a) {
    const matrix = reals(a, 'a');
    const n = orderOf(matrix, 'a');
    return withMemory(this.#exports, (memory) => {
      const inverse = memory.take(matrix.byteLength);
      this.#exports.mtxInv(memory.copy(matrix), n, inverse);
      return memory.view(inverse, matrix).slice();
    });
  }

  #ofText(name, text) {
    return withMemory(this.#exports, (memory) => {
      const bytes = characters(text);
      return this.#exports[name](memory.copy(bytes), bytes.length);
    });
  }

  #written(name, width, value) {
    return withMemory(this.#exports, (memory) => {
      const address = memory.take(width);
      this.#exports[name](value, address);
      return textOf(memory.view(address, new Uint8Array(width)));
    });
  }

  #ofReals(name, ...operands) {
    const areNumbers = operands.every((operand) => typeof operand === 'number');
    const arrays = operands.map((operand) => reals(areNumbers ? [operand] : operand, name));
    const { length } = arrays[0];
    if (arrays.some((array) => array.length !== length)) throw new TypeError(`${name}: arrays of different lengths`);
    return withMemory(this.#exports, (memory) => {
      const result = memory.take(8 * length);
      this.#exports[name](...arrays.map((array) => memory.copy(array)), result, length);
      const values = memory.view(result, arrays[0]).slice();
      return areNumbers ? values[0] : values;
    });
  }
}

/** Relative names are the module's own business: it has to know where it is. */
function setWorkingFolder(exports, path) {
  withMemory(exports, (memory) => exports.chdir(memory.copy(new TextEncoder().encode(`${path}\0`))));
}

async function compile(source) {
  const from = source ?? new URL('./corvale.wasm', import.meta.url);
  if (from instanceof WebAssembly.Module) return from;
  if (from instanceof ArrayBuffer || ArrayBuffer.isView(from)) return WebAssembly.compile(from);
  if (isNode && String(from).startsWith('file:')) {
    const { readFile } = await import('node:fs/promises');
    return WebAssembly.compile(await readFile(new URL(from)));
  }
  const answer = await fetch(from);
  if (!answer.ok) throw new Error(`${from}: ${answer.status} ${answer.statusText}`);
  return WebAssembly.compile(await answer.arrayBuffer());
}

/**
 * Loads the library. `module`: its bytes, its URL or the compiled module, where it is not beside this file;
 * `files`: a MemoryFiles, which a browser has in any case; `print(text)`: what takes its standard output.
 */
export async function load({ module, files, print } = {}) {
  const folder = files ?? (isNode ? new SystemFiles(await import('node:fs')) : new MemoryFiles());
  const write = (bytes) => (print ?? ((text) => console.log(text.replace(/\n$/, ''))))(textOf(bytes));
  let exports;
  const imports = wasiImports(() => exports.memory, folder, write);
  const instance = await WebAssembly.instantiate(await compile(module), { wasi_snapshot_preview1: imports });
  exports = instance.exports;
  exports._initialize();
  if (folder instanceof SystemFiles) setWorkingFolder(exports, process.cwd());
  return new Corvale(exports, folder);
}
