// The declarations of the package, as a compiler of its user reads them: what they allow, and what they must not.
import { Corvale, CorvaleError, load, MemoryFiles } from 'corvale';
import type { LoadOptions, TestValues } from 'corvale';

const files = new MemoryFiles();
files.write('orbit.inp', 'QZ_MOIC 1\n');
files.write('orbit.inp', new Uint8Array(3));
const options: LoadOptions = { files, module: new URL('file:///corvale.wasm'), print: (text) => text.length };
const corvale: Corvale = await load(options);

const one: number = corvale.sin(1);
const many: Float64Array = corvale.sin([1, 2]);
const pairs: Float64Array = corvale.arcTan2(many, many);
const { inverse, x } = corvale.cholesky([1], [one]);
const both: Float64Array[] = [inverse, x, pairs];
const values = (given: TestValues): bigint => corvale.testInterface(given).l;
const mode: number = corvale.dupKeyMode;
const text: string | undefined = files.readText('orbit.inp');
const message: string = new CorvaleError('').message;
export { both, message, mode, text, values };

// @ts-expect-error: a library comes from load()
new Corvale();
// @ts-expect-error: a number or many, not a text
corvale.sin('1');
// @ts-expect-error: two of a kind
corvale.arcTan2(1, [1]);
// @ts-expect-error: a code is a text
corvale.alpha5ToNum(1);
// @ts-expect-error: the files are the library's
corvale.files = files;
// @ts-expect-error: there is no such method
corvale.tan(1);
