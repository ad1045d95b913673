// What every JavaScript binding has to do: called with one of its objects, each function of the C API once at
// least.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';

/** Runs all parts; `binding` has corvale, CorvaleError and DECLARATIONS. Returns how many arguments were checked. */
export function runParts({ corvale, CorvaleError, DECLARATIONS }) {
  // How many arguments the declarations have, which are those of the table.
  function declarationsAgree() {
    const table = fs.readFileSync(process.env.CORVALE_INTERFACE, 'utf8').split('\n').filter((line) => /^[^#]/.test(line));
    const have = Object.entries(DECLARATIONS).flatMap(([name, [result, ...declared]]) =>
      [`function ${name} ${result}`, ...declared.map((argument) => `argument ${argument.join(' ')}`)]);
    assert.deepEqual(have, table);
    return have.filter((line) => line.startsWith('argument')).length;
  }

  function identity() {
    corvale.init();
    assert.match(corvale.info(), /^Arvenit Corvale - Version: v9\.4 - Build: .*[^ ]$/);
    assert.equal(corvale.initDllNames(), '');
  }

  const modes = () => [corvale.dupKeyMode, corvale.allKeyMode, corvale.elsetKeyMode];

  function fails(call, message) {
    assert.throws(call, new CorvaleError(message));
  }

  function keyModes() {
    corvale.dupKeyMode = corvale.allKeyMode = 1;
    assert.deepEqual(modes(), [1, 1, 0]);
    corvale.elsetKeyMode = 1;
    corvale.resetAllKeyMode();
    assert.deepEqual(modes(), [0, 0, 1]);
    corvale.elsetKeyMode = 0;
    const reason = 'SetDupKeyMode: invalid input value for DUPLICATION key mode.';
    fails(() => { corvale.dupKeyMode = 2; }, reason);
    assert.equal(corvale.lastErrMsg(), reason);
  }

  function log() {
    const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'corvale-'));
    const file = path.join(folder, 'run.log');
    const reason = 'FileOpen: Unable to open file "no such file" for reading.';
    corvale.openLogFile(file);
    corvale.logMessage('pass 1 of 3');
    fails(() => corvale.loadFile('no such file'), reason);
    corvale.closeLogFile();
    assert.deepEqual([corvale.lastInfoMsg(), corvale.lastErrMsg()], ['pass 1 of 3', '']);
    assert.equal(fs.readFileSync(file, 'utf8'), `${'pass 1 of 3'.padEnd(128)}\nError-${reason}\n`);
    fails(() => corvale.openLogFile(folder), 'OpenLogFile: log file failed to open.');
    corvale.closeLogFile();
    fs.rmSync(folder, { recursive: true });
  }

  function cards() {
    corvale.loadFile(process.env.CORVALE_INPUT);
    const values = [...corvale.moicData(9)];
    assert.deepEqual(values.slice(0, 3), [6378.135, 398600.8, 1.0826158e-3]);
    assert.deepEqual(values.slice(6), [0.25, 0, 1e-12]);
    assert.deepEqual(modes(), [0, 1, 1]);
    assert.deepEqual(corvale.moicData(0), new Float64Array(0));
    assert.deepEqual(corvale.moicData(129), new Float64Array(129));
  }

  const distinct = () => ({
    ch: 65, i: 2 ** 31 - 1, l: 2n ** 63n - 1n, d: 0.1, text: '  text',
    i3: Int32Array.of(2 ** 31 - 1, 2, -3), l3: BigInt64Array.of(2n ** 63n - 1n, 5n, -6n),
    d3: Float64Array.of(-0, 5e-324, 1e308), i6: Int32Array.of(-(2 ** 31), 8, 9, 10, 11, 2 ** 31 - 1),
    l6: BigInt64Array.of(-(2n ** 63n), 14n, 15n, 16n, 17n, 2n ** 63n - 1n), d6: Float64Array.of(0.2, 0.3, 0.4, 0.5, 0.6, 0.7),
  });

  function selfTests() { // strict deepEqual tells -0 from 0; typed arrays wrap
    const given = distinct();
    assert.deepEqual(corvale.testInterface(distinct()), given);
    assert.deepEqual(corvale.testInterface2(distinct()), {
      ch: 90, i: -(2 ** 31), l: -(2n ** 63n) + 1n, d: 0.1 + 42.123456, text: "It doesn't matter what your string was.",
      i3: given.i3.map((i) => i + 1), l3: given.l3.map((l) => l + 1234567890123456789n), d3: given.d3.map((d) => d + 42),
      i6: given.i6.map((i) => i + 1), l6: given.l6.map((l) => l + 6n), d6: given.d6.map((d) => d + 7.6),
    });
    const products = { i3: given.i3.map((i) => i * 4), i6: given.i6.map((i) => i * 5) };
    assert.deepEqual(corvale.testInterface3(distinct()), products);
  }

  function refusals() {
    const fits = 'n'.repeat(512);
    for (const name of [' blank', 'tab\t', '\u00e9t\u00e9', '\u0141', 'del\x7f', 'nul\0', 'line\n', `${fits}n`, null, 7]) {
      assert.throws(() => corvale.loadFile(name), TypeError);
      assert.throws(() => corvale.openLogFile(name), TypeError);
    }
    for (const text of [' blank', 'tab\t', 'n'.repeat(129)]) assert.throws(() => corvale.logMessage(text), TypeError);
    for (const mode of [2 ** 31, 0.5, '1', 1n]) assert.throws(() => { corvale.dupKeyMode = mode; }, TypeError);
    const wrong = { ch: 256, i: 2 ** 31, l: 2n ** 63n, d: '1', i3: new Int32Array(2), l6: new BigInt64Array(7), d3: [1, 2, 3] };
    for (const [name, value] of Object.entries(wrong)) {
      for (const call of ['testInterface', 'testInterface2']) {
        assert.throws(() => corvale[call]({ ...distinct(), [name]: value }), TypeError, name);
      }
    }
    assert.throws(() => corvale.moicData(-1), RangeError);
    assert.throws(() => corvale.moicData(1.5), TypeError);
    assert.throws(() => corvale.loadFile(fits), CorvaleError);
    fails(() => corvale.loadFile(''), 'FileOpen: File name is empty.');
  }

  const checked = declarationsAgree();
  for (const part of [identity, keyModes, log, cards, selfTests, refusals]) part();
  return checked;
}
