// Answers the cases of tests/bindings/check.py with a JavaScript binding.

import fs from 'node:fs';

const view = new DataView(new ArrayBuffer(8));
const realOf = (bits) => {
  view.setBigUint64(0, BigInt(`0x${bits}`));
  return view.getFloat64(0);
};
const DECODE = {
  i: Number, l: BigInt, r: realOf, c: Number, x: (text) => Buffer.from(text, 'hex').toString(), n: () => null,
};
const ARRAYS = { i: Int32Array, l: BigInt64Array, r: Float64Array, x: Array };

function decoded(token) {
  const elements = token.split(',').map((element) => DECODE[element[0]](element.slice(1)));
  return elements.length > 1 ? ARRAYS[token[0]].from(elements) : elements[0];
}

const text = (value) => `x${Buffer.from(value, 'latin1').toString('hex')}`;
const real = (value) => {
  view.setFloat64(0, value);
  return `r${view.getBigUint64(0).toString(16).padStart(16, '0')}`;
};
const integer = (value) => String(value);
const each = (encode) => (values) => Array.from(values, encode).join(' ');
const character = (code) => `x${code.toString(16)}`;
const FIELDS = {
  ch: character, i: integer, l: integer, d: real, text, i3: each(integer), l3: each(integer), d3: each(real),
  i6: each(integer), l6: each(integer), d6: each(real),
};

const valuesOf = (given) => Object.fromEntries(Object.keys(FIELDS).map((field, k) => [field, given[k]]));
const fields = (values) => Object.entries(FIELDS).filter(([field]) => field in values)
  .map(([field, encode]) => encode(values[field])).join(' ');

// Of each C function what it gives, as it is said.
const CALLS = {
  CorvaleInit: (corvale) => corvale.init(),
  CorvaleGetInfo: (corvale) => text(corvale.info()),
  GetInitDllNames: (corvale) => text(corvale.initDllNames()),
  OpenLogFile: (corvale, name) => corvale.openLogFile(name),
  CloseLogFile: (corvale) => corvale.closeLogFile(),
  LogMessage: (corvale, message) => corvale.logMessage(message),
  GetLastErrMsg: (corvale) => text(corvale.lastErrMsg()),
  GetLastInfoMsg: (corvale) => text(corvale.lastInfoMsg()),
  GetDupKeyMode: (corvale) => integer(corvale.dupKeyMode),
  SetDupKeyMode: (corvale, mode) => { corvale.dupKeyMode = mode; },
  GetAllKeyMode: (corvale) => integer(corvale.allKeyMode),
  SetAllKeyMode: (corvale, mode) => { corvale.allKeyMode = mode; },
  ResetAllKeyMode: (corvale) => corvale.resetAllKeyMode(),
  GetElsetKeyMode: (corvale) => integer(corvale.elsetKeyMode),
  SetElsetKeyMode: (corvale, mode) => { corvale.elsetKeyMode = mode; },
  CorvaleLoadFile: (corvale, name) => corvale.loadFile(name),
  GetMOICData: (corvale, count) => each(real)(corvale.moicData(count)),
  TestInterface: (corvale, ...given) => fields(corvale.testInterface(valuesOf(given))),
  TestInterface2: (corvale, ...given) => fields(corvale.testInterface2(valuesOf(given))),
  TestInterface3: (corvale, i3, i6) => fields(corvale.testInterface3({ i3, i6 })),
};

/** Answers standard input, case by case; `open` loads the library of a path. */
export function runCases(open, CorvaleError) {
  let corvale;
  for (const line of fs.readFileSync(0, 'utf8').trim().split('\n')) {
    const [name, ...tokens] = line.split(' ');
    const given = tokens.map(decoded);
    try {
      if (name === 'Open') corvale = open(...given);
      console.log('ok', name === 'Open' ? '' : CALLS[name](corvale, ...given) ?? '');
    } catch (error) {
      if (error instanceof CorvaleError) console.log('failed', text(error.message));
      else if (error instanceof TypeError) console.log('refused');
      else if (error instanceof RangeError) console.log('refused RangeError');
      else if (name === 'Open') console.log('unloaded', text(error.message));
      else throw error;
    }
  }
}
