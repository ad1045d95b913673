// `corvale check` and the filters of the program, in WebAssembly (tools/wasm/PageExports.cpp).

import { wasiImports } from './wasi.js';

const SUCCESS = 0, NOT_SUPPORTED = 58; // of WASI
const STANDARD_OUTPUT = 1;

const KINDS = ['blank', 'comment', 'card', 'other'];
const NOTHING = 0, FINDINGS = 1, ALL_LINES = 2;

/** The filters, in the order in which the module counts them. */
export const FILTERS = ['encodeAlpha5', 'decodeAlpha5', 'encodeDegrees', 'decodeDegrees', 'encodeHours', 'decodeHours',
  'readNumber', 'compressRow'];

// What a person looks at. The counts and what loading sets are those of the whole file.
const MOST_LINES = 1000, MOST_FINDINGS = 1000;
const MOST_TEXT = 1024; // bytes of a line

const SLICE = 0x100000; // bytes that are explained before anybody else gets a turn

/** Bytes to read, as a file for WASI. */
const handleOf = (read, size) => ({ read, size, close: () => {} });

/** The program. Made by `loadProgram`. */
class Program {
  exports; // of the module
  file; // what it opens: { size, read(bytes, position) }, which returns how many were read
  #input = new Uint8Array(); // its standard input, as far as it has not been read
  #printed = ['', '']; // its standard output and errors
  #found; // what the running check has handed over since it was asked last

  imports() {
    const memory = () => this.exports.memory;
    const text = (address, size) => String.fromCharCode(...new Uint8Array(memory().buffer, address, size));
    const files = { prefix: '', open: () => handleOf((...where) => this.file.read(...where), () => this.file.size) };
    const input = handleOf((bytes) => {
      const part = this.#input.subarray(0, bytes.length);
      bytes.set(part);
      this.#input = this.#input.subarray(part.length);
      return part.length;
    }, () => this.#input.length);
    const print = (bytes, descriptor) => {
      this.#printed[descriptor === STANDARD_OUTPUT ? 0 : 1] += new TextDecoder().decode(bytes);
    };
    return {
      wasi_snapshot_preview1: {
        ...wasiImports(memory, files, print, input),
        environ_get: () => SUCCESS,
        environ_sizes_get: (count, size) => {
          new Uint32Array(memory().buffer, count, 1)[0] = new Uint32Array(memory().buffer, size, 1)[0] = 0;
          return SUCCESS;
        },
        fd_fdstat_set_flags: () => SUCCESS,
        poll_oneoff: () => NOT_SUPPORTED, // only pipes are waited for
      },
      page: {
        line: (number, kind, address, size, length, effect, effectSize) => {
          const bytes = new Uint8Array(memory().buffer, address, Math.min(size, MOST_TEXT)).slice();
          this.#found.lines.push({ number, kind: KINDS[kind], bytes, length, effect: text(effect, effectSize), findings: [] });
        },
        finding: (column, length, severity, severitySize, code, codeSize, message, messageSize, help, helpSize) => {
          this.#found.lines.at(-1).findings.push({ column, length, severity: text(severity, severitySize),
            code: text(code, codeSize), message: text(message, messageSize), help: text(help, helpSize) });
        },
        count: (name, size, count) => { this.#found.counts[text(name, size)] = count; },
        mode: (name, nameSize, id, idSize) => { this.#found.modes.push({ name: text(name, nameSize), id: text(id, idSize) }); },
        value: (element, address, size) => { this.#found.values.push({ element, value: text(address, size) }); },
        failure: (address, size) => { this.#found.failure = text(address, size); },
      },
    };
  }

  /**
   * Explains a file, slice by slice: yields the lines of each slice that are worth showing; the last time also what is
   * known of all of the file: counts, modes, values, or failure.
   */
  * check(file) {
    this.file = file;
    this.exports.beginCheck();
    let lines = 0, findings = 0;
    for (let goesOn = true; goesOn;) {
      this.#found = { lines: [], counts: {}, modes: [], values: [] };
      const wanted = findings >= MOST_FINDINGS ? NOTHING : lines >= MOST_LINES ? FINDINGS : ALL_LINES;
      goesOn = this.exports.continueCheck(lines === 0 ? 1 : SLICE, wanted) !== 0;
      const found = this.#found;
      found.lines = found.lines.filter((line) => {
        const isShown = lines < MOST_LINES || (line.findings.length > 0 && findings < MOST_FINDINGS);
        lines += 1;
        findings += line.findings.length;
        return isShown;
      });
      yield goesOn ? { lines: found.lines } : found;
    }
  }

  /** What a filter makes of a line: { text }, or { why } it cannot be used. */
  convert(filter, line) {
    this.#input = new TextEncoder().encode(line);
    this.#printed = ['', ''];
    const status = this.exports.filter(FILTERS.indexOf(filter));
    const [text, why] = this.#printed.map((printed) => printed.replace(/\n$/, ''));
    return status === 0 ? { text } : { why: why.replace(/^corvale \w+: (line 1, )?/, '') };
  }
}

/** The program, out of the compiled module. */
export async function loadProgram(module) {
  const program = new Program();
  const instance = await WebAssembly.instantiate(module, program.imports());
  program.exports = instance.exports;
  program.exports._initialize();
  return program;
}
