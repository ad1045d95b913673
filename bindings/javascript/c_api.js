// The C API as JavaScript has it, however the library was loaded. Internal to the bindings.

import { boxed } from './declarations.js';

const NAME_WIDTH = 512;
const MESSAGE_WIDTH = 128;
const BLANK = 32;

/** The library returned status 2; the message is its own. */
export class CorvaleError extends Error {
  name = 'CorvaleError';
}

/** The text in a buffer; a TypeError when the library would not see all of it. */
function filled(text, width) {
  if (typeof text !== 'string') throw new TypeError(`${text}: not a string`);
  const wrong = text.search(/[^ -~]/);
  if (wrong >= 0) {
    throw new TypeError(`${JSON.stringify(text)}: character ${wrong + 1} is not printable ASCII`);
  }
  if (text.length > width) throw new TypeError(`"${text}": ${text.length} characters, ${width} fit`);
  return Uint8Array.from(text.padEnd(width), (character) => character.charCodeAt(0));
}

/** A name or message; also refused when it begins with a blank, which the library drops. */
function filledUnindented(text, width) {
  if (String(text).startsWith(' ')) throw new TypeError(`"${text}": begins with a blank`);
  return filled(text, width);
}

/** What a buffer holds, without the blanks that fill it; bytes are Latin-1. */
function trimmed(buffer) {
  const length = buffer.findLastIndex((byte) => byte !== BLANK) + 1;
  return String.fromCharCode(...buffer.subarray(0, length));
}

/** The C API over a library that somebody has loaded: `api` has its functions by name. */
export class CApi {
  #api;

  constructor(api) {
    this.#api = api;
  }

  /** CorvaleInit. Does nothing: the library is ready once it is loaded. */
  init() {
    this.#check(this.#api.CorvaleInit());
  }

  /** CorvaleGetInfo. Name, version, build date, platform and compiler. */
  info() {
    return this.#read('CorvaleGetInfo', MESSAGE_WIDTH);
  }

  /** GetInitDllNames. The libraries that have to be initialised first: none. */
  initDllNames() {
    return this.#read('GetInitDllNames', NAME_WIDTH);
  }

  /** OpenLogFile. Opens the log, created or emptied; every message is from then on also a line of it. */
  openLogFile(fileName) {
    this.#check(this.#api.OpenLogFile(filledUnindented(fileName, NAME_WIDTH)));
  }

  /** CloseLogFile. Closes the log, if one is open, and blanks the last error message. */
  closeLogFile() {
    this.#api.CloseLogFile();
  }

  /** LogMessage. Stores a message of at most 128 characters and writes it to an open log. */
  logMessage(message) {
    this.#api.LogMessage(filledUnindented(message, MESSAGE_WIDTH));
  }

  /** GetLastErrMsg. The last error message; it stays until the next error or closeLogFile. */
  lastErrMsg() {
    return this.#read('GetLastErrMsg', MESSAGE_WIDTH);
  }

  /** GetLastInfoMsg. The last informational message. */
  lastInfoMsg() {
    return this.#read('GetLastInfoMsg', MESSAGE_WIDTH);
  }

  /** GetDupKeyMode, SetDupKeyMode. 0 or 1; setting another throws and changes nothing. */
  get dupKeyMode() {
    return this.#api.GetDupKeyMode();
  }
  set dupKeyMode(mode) {
    this.#check(this.#api.SetDupKeyMode(mode));
  }

  /** GetAllKeyMode, SetAllKeyMode. 0 or 1; setting another throws and changes nothing. */
  get allKeyMode() {
    return this.#api.GetAllKeyMode();
  }
  set allKeyMode(mode) {
    this.#check(this.#api.SetAllKeyMode(mode));
  }

  /** ResetAllKeyMode. Sets the all-key and the duplication key mode back to 0. */
  resetAllKeyMode() {
    this.#api.ResetAllKeyMode();
  }

  /** GetElsetKeyMode, SetElsetKeyMode. 0 or 1; setting another throws and changes nothing. */
  get elsetKeyMode() {
    return this.#api.GetElsetKeyMode();
  }
  set elsetKeyMode(mode) {
    this.#check(this.#api.SetElsetKeyMode(mode));
  }

  /** CorvaleLoadFile. Reads the cards of a file. Throws if it cannot be opened, never for what it holds. */
  loadFile(fileName) {
    this.#check(this.#api.CorvaleLoadFile(filledUnindented(fileName, NAME_WIDTH)));
  }

  /**
   * GetMOICData. The first values of the array that QZ_MOIC cards fill, a Float64Array; for more than
   * 128 the library gives zeros. A negative count throws a RangeError.
   */
  moicData(count) {
    const values = new Float64Array(count);
    this.#api.GetMOICData(count, values);
    return values;
  }

  /**
   * TestInterface. Gives every value back as it arrived: `ch` a byte, `i` and `d` numbers, `l` a bigint,
   * `text` at most 512 characters, `i3`, `i6` Int32Array, `l3`, `l6` BigInt64Array, `d3`, `d6` Float64Array.
   */
  testInterface({ ch, i, l, d, text, i3, l3, d3, i6, l6, d6 }) {
    const to = blankValues();
    this.#api.TestInterface(ch, to.ch, i, to.i, l, to.l, d, to.d, filled(text, NAME_WIDTH), to.text,
      i3, to.i3, l3, to.l3, d3, to.d3, i6, to.i6, l6, to.l6, d6, to.d6);
    return unpacked(to);
  }

  /** TestInterface2. The same values, each changed by a fixed amount; integers wrap. */
  testInterface2({ ch, i, l, d, text, i3, l3, d3, i6, l6, d6 }) {
    const to = {
      ch: boxed('ch', 'char', ch), i: boxed('i', 'int32', i),
      l: boxed('l', 'int64', l), d: boxed('d', 'real64', d),
      text: filled(text, NAME_WIDTH), i3: i3.slice(), l3: l3.slice(), d3: d3.slice(),
      i6: i6.slice(), l6: l6.slice(), d6: d6.slice(),
    };
    this.#api.TestInterface2(to.ch, to.i, to.l, to.d, to.text, to.i3, to.l3, to.d3, to.i6, to.l6, to.d6);
    return unpacked(to);
  }

  /** TestInterface3. 4 times `i3` and 5 times `i6`; products wrap. */
  testInterface3({ i3, i6 }) {
    const to = { i3: new Int32Array(3), i6: new Int32Array(6) };
    this.#api.TestInterface3(i3, to.i3, i6, to.i6);
    return to;
  }

  #read(name, width) {
    const buffer = new Uint8Array(width);
    this.#api[name](buffer);
    return trimmed(buffer);
  }

  #check(status) {
    if (status !== 0) throw new CorvaleError(this.lastErrMsg());
  }
}

function blankValues() {
  return {
    ch: new Uint8Array(1), i: new Int32Array(1), l: new BigInt64Array(1), d: new Float64Array(1),
    text: new Uint8Array(NAME_WIDTH), i3: new Int32Array(3), l3: new BigInt64Array(3),
    d3: new Float64Array(3), i6: new Int32Array(6), l6: new BigInt64Array(6), d6: new Float64Array(6),
  };
}

/** Single values out of their arrays, the text out of its buffer. */
function unpacked(to) {
  return { ...to, ch: to.ch[0], i: to.i[0], l: to.l[0], d: to.d[0], text: trimmed(to.text) };
}
