import { CApi } from './c_api.js';

export { CorvaleError, type TestValues } from './c_api.js';

/** The loaded library. It has one state for the whole process, workers included. */
export class Corvale extends CApi {
  /** Loads a library by its path or name; without one what CORVALE_LIBRARY names, or else libCorvale.so.9. */
  constructor(path?: string);
}
