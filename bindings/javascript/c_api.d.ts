/** The library returned status 2; the message is its own. */
export class CorvaleError extends Error {}

/** What the self-tests give back, changed or not. */
export interface TestValues {
  ch: number;
  i: number;
  l: bigint;
  d: number;
  text: string;
  i3: Int32Array;
  l3: BigInt64Array;
  d3: Float64Array;
  i6: Int32Array;
  l6: BigInt64Array;
  d6: Float64Array;
}

/** The 20 functions of the C API. */
export class CApi {
  protected constructor(api: object);

  init(): void;
  info(): string;
  initDllNames(): string;
  openLogFile(fileName: string): void;
  closeLogFile(): void;
  logMessage(message: string): void;
  lastErrMsg(): string;
  lastInfoMsg(): string;
  dupKeyMode: number;
  allKeyMode: number;
  elsetKeyMode: number;
  resetAllKeyMode(): void;
  /** Throws a CorvaleError where the file does not open. */
  loadFile(fileName: string): void;
  moicData(count: number): Float64Array;
  testInterface(values: TestValues): TestValues;
  testInterface2(values: TestValues): TestValues;
  testInterface3(values: Pick<TestValues, 'i3' | 'i6'>): Pick<TestValues, 'i3' | 'i6'>;
}
