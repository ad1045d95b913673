// The 20 functions as the library sees them, and what their arguments may be. Internal to the bindings.

/**
 * Result, then each argument: name, type, how many elements the library reads or writes (a number or
 * the name of an argument), way. A single element that goes in is passed by value, all else by address.
 */
export const DECLARATIONS = {
  CorvaleInit: ['int32'],
  CorvaleGetInfo: ['void', ['info', 'text', 128, 'out']],
  GetInitDllNames: ['void', ['names', 'text', 512, 'out']],
  OpenLogFile: ['int32', ['fileName', 'text', 512, 'in']],
  CloseLogFile: ['void'],
  LogMessage: ['void', ['message', 'text', 128, 'in']],
  GetLastErrMsg: ['void', ['message', 'text', 128, 'out']],
  GetLastInfoMsg: ['void', ['message', 'text', 128, 'out']],
  GetDupKeyMode: ['int32'],
  SetDupKeyMode: ['int32', ['mode', 'int32', 1, 'in']],
  GetAllKeyMode: ['int32'],
  SetAllKeyMode: ['int32', ['mode', 'int32', 1, 'in']],
  ResetAllKeyMode: ['void'],
  GetElsetKeyMode: ['int32'],
  SetElsetKeyMode: ['int32', ['mode', 'int32', 1, 'in']],
  CorvaleLoadFile: ['int32', ['fileName', 'text', 512, 'in']],
  GetMOICData: ['void', ['count', 'int32', 1, 'in'], ['values', 'real64', 'count', 'out']],
  TestInterface: ['void',
    ['cIn', 'char', 1, 'in'], ['cOut', 'char', 1, 'out'],
    ['iIn', 'int32', 1, 'in'], ['iOut', 'int32', 1, 'out'],
    ['lIn', 'int64', 1, 'in'], ['lOut', 'int64', 1, 'out'],
    ['dIn', 'real64', 1, 'in'], ['dOut', 'real64', 1, 'out'],
    ['strIn', 'text', 512, 'in'], ['strOut', 'text', 512, 'out'],
    ['i3In', 'int32', 3, 'in'], ['i3Out', 'int32', 3, 'out'],
    ['l3In', 'int64', 3, 'in'], ['l3Out', 'int64', 3, 'out'],
    ['d3In', 'real64', 3, 'in'], ['d3Out', 'real64', 3, 'out'],
    ['i6In', 'int32', 6, 'in'], ['i6Out', 'int32', 6, 'out'],
    ['l6In', 'int64', 6, 'in'], ['l6Out', 'int64', 6, 'out'],
    ['d6In', 'real64', 6, 'in'], ['d6Out', 'real64', 6, 'out']],
  TestInterface2: ['void',
    ['ch', 'char', 1, 'inout'], ['i', 'int32', 1, 'inout'],
    ['l', 'int64', 1, 'inout'], ['d', 'real64', 1, 'inout'],
    ['str', 'text', 512, 'inout'],
    ['i3', 'int32', 3, 'inout'], ['l3', 'int64', 3, 'inout'], ['d3', 'real64', 3, 'inout'],
    ['i6', 'int32', 6, 'inout'], ['l6', 'int64', 6, 'inout'], ['d6', 'real64', 6, 'inout']],
  TestInterface3: ['void',
    ['i3In', 'int32', 3, 'in'], ['i3Out', 'int32', 3, 'out'],
    ['i6In', 'int32', 6, 'in'], ['i6Out', 'int32', 6, 'out']],
};

const integer = (least, greatest) => (value) =>
  Number.isInteger(value) && value >= least && value <= greatest;
const isInt64 = (value) => typeof value === 'bigint' && BigInt.asIntN(64, value) === value;

/** Of each type: its name in C, the array that holds it, the values that fit. */
export const TYPES = {
  char: { c: 'uint8_t', array: Uint8Array, fits: integer(0, 255) },
  text: { c: 'uint8_t', array: Uint8Array },
  int32: { c: 'int32_t', array: Int32Array, fits: integer(-(2 ** 31), 2 ** 31 - 1) },
  int64: { c: 'int64_t', array: BigInt64Array, fits: isInt64 },
  real64: { c: 'double', array: Float64Array, fits: (value) => typeof value === 'number' },
};

export const isByValue = ([, type, width, way]) => way === 'in' && width === 1 && type !== 'text';

function checkFits(name, type, value) {
  if (!TYPES[type].fits(value)) throw new TypeError(`${name}: ${value} is no ${type}`);
}

/** A single value in an array of its own, to pass by address. */
export function boxed(name, type, value) {
  checkFits(name, type, value);
  return TYPES[type].array.of(value);
}

/** Throws a TypeError unless a value is what its declaration says: no call can reach past an array. */
function check([name, type, width], byValue, value, elements) {
  const { array } = TYPES[type];
  if (byValue) {
    checkFits(name, type, value);
  } else if (!(value instanceof array) || value.length !== elements) {
    throw new TypeError(`${name}: not ${array.name} of ${width}`);
  }
}

/**
 * The functions by name, each checking its arguments first. `bind(name, result, declared)` gives the plain
 * call of one.
 */
export function checkedFunctions(bind) {
  return Object.fromEntries(Object.entries(DECLARATIONS).map(([name, [result, ...declared]]) => {
    const call = bind(name, result, declared);
    const byValue = declared.map(isByValue);
    const countedBy = declared.map(([, , width]) => declared.findIndex(([other]) => other === width));
    const checked = (...values) => {
      declared.forEach((argument, k) => {
        const elements = countedBy[k] < 0 ? argument[2] : values[countedBy[k]];
        check(argument, byValue[k], values[k], elements);
      });
      return call(...values);
    };
    return [name, checked];
  }));
}
