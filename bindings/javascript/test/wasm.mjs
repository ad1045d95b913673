// The package as its user has it: installed, in Node, with the system's files and with files in memory. What
// is not of the C API gives what the native library gives.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import { CorvaleError, load, MemoryFiles } from 'corvale';

// A name relative to the working folder.
fs.copyFileSync(process.env.CORVALE_INPUT, 'relative.inp');
(await load()).loadFile('relative.inp');

// Files in memory, and a state of its own.
const files = new MemoryFiles();
const corvale = await load({ files });
assert.throws(() => corvale.loadFile('orbit.inp'), CorvaleError);
files.write('orbit.inp', fs.readFileSync(process.env.CORVALE_INPUT));
corvale.openLogFile('run.log');
corvale.loadFile('orbit.inp');
corvale.logMessage('done');
corvale.closeLogFile();
assert.equal(corvale.moicData(1)[0], 6378.135);
assert.match(files.readText('run.log'), /^done *\n$/);
corvale.openLogFile('run.log');
assert.equal(files.readText('run.log'), '');

// Values by MPFR and by the native library.
const rows = [
  [corvale.numToAlpha5(100000), 'A0000'], [corvale.alpha5ToNum('Z9999'), 339999],
  [corvale.strToReal(' 1.5D+3'), 1500], [corvale.strToInt('  -42 x'), -42],
  [corvale.compressCsvLine('1.500000000000000E+003, 2.000000000000000E-001, 0.000000000000000E+000 , 3'), '1.5E+3,2E-1,,3'],
  [corvale.degToDDMMSSSSSStr(10.5), '0103000.000'], [corvale.degToHHMMSSSStr(180), '1200000'],
  [corvale.sin(1e22), -0.8522008497671888], [corvale.cos(0), 1], [corvale.arcTan(1), Math.PI / 4],
  [corvale.arcTan2(-0, -1), -Math.PI], [corvale.arcCos(0.5), 1.0471975511965979], [corvale.exp(1), Math.E],
  [corvale.cubeRoot(-27), -3], [corvale.cubRt(8), 2], [corvale.acTan(-1, 0), 1.5 * Math.PI], [corvale.acSin(2), Math.PI / 2],
  [corvale.deltaAngleLT180(10, 350), 20], [corvale.fMod2P(-1), 2 * Math.PI - 1], [corvale.serExp(2), 0.5],
  [[...corvale.sin([0, 1])], [0, 0.8414709848078965]], [[...corvale.arcTan2(Float64Array.of(1, 0), [1, -1])], [Math.PI / 4, Math.PI]],
  [[...corvale.mtxInv([2, 0, 0, 4])], [0.5, 0, 0, 0.25]],
];
for (const [k, [got, wanted]] of rows.entries()) assert.deepEqual(got, wanted, `row ${k}`);
const { inverse, x } = corvale.cholesky([4, 0, 0, 16], [8, 32]);
assert.deepEqual([[...inverse], [...x]], [[0.25, 0, 0, 0.0625], [2, 2]]);
const many = corvale.sin(Float64Array.from({ length: 1e6 }, (_, k) => k)); // the memory grows meanwhile
assert.equal(many[999999], corvale.sin(999999));

for (const call of [() => corvale.sin('1'), () => corvale.arcTan2([1], [1, 2]), () => corvale.mtxInv([1, 2]),
  () => corvale.cholesky([1], [1, 2]), () => corvale.numToAlpha5(0.5), () => corvale.strToReal('\u0141')]) {
  assert.throws(call, TypeError);
}

console.log(`WebAssembly: ${rows.length} values, ok`);
