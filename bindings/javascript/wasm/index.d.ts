import { CApi } from './c_api.js';

export { CorvaleError, type TestValues } from './c_api.js';

/** Files in memory, by name; there are no folders. */
export class MemoryFiles {
  write(name: string, content: string | ArrayLike<number>): void;
  read(name: string): Uint8Array | undefined;
  readText(name: string): string | undefined;
  names(): string[];
  delete(name: string): boolean;
}

/** A number, or many. */
type Reals = Float64Array | number[];
interface OfReals {
  (x: number): number;
  (x: Reals): Float64Array;
}
interface OfPairs {
  (a: number, b: number): number;
  (a: Reals, b: Reals): Float64Array;
}

/** The library. It has a state of its own: messages, log, modes and values. */
export class Corvale extends CApi {
  private constructor();
  /** The files that it sees: in a browser a MemoryFiles. */
  readonly files: MemoryFiles;

  numToAlpha5(number: number): string;
  alpha5ToNum(code: string): number;
  strToReal(field: string): number;
  strToInt(field: string): number;
  compressCsvLine(line: string): string;
  degToDDMMSSSSSStr(degrees: number): string;
  degToHHMMSSSStr(degrees: number): string;

  fMod2P: OfReals;
  acSin: OfReals;
  cubRt: OfReals;
  serExp: OfReals;
  acTan: OfPairs;
  deltaAngleLT180: OfPairs;
  sin: OfReals;
  cos: OfReals;
  arcTan: OfReals;
  arcTan2: OfPairs;
  arcCos: OfReals;
  exp: OfReals;
  cubeRoot: OfReals;

  /** Inverse and solution of A x = b, A symmetric and positive definite, column by column. */
  cholesky(a: Reals, b: Reals): { inverse: Float64Array; x: Float64Array };
  mtxInv(a: Reals): Float64Array;
}

export interface LoadOptions {
  /** The module's bytes, its URL or the compiled module, where it is not beside the package's code. */
  module?: WebAssembly.Module | ArrayBuffer | ArrayBufferView | string | URL;
  /** Files in memory; in Node those of the system without it. */
  files?: MemoryFiles;
  /** Takes what the library writes to standard output. */
  print?: (text: string) => void;
}

export function load(options?: LoadOptions): Promise<Corvale>;
