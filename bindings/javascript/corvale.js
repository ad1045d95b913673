/**
 * The C API of libCorvale: messages and log, key modes, input-file cards, interface self-tests.
 *
 *     import { Corvale } from 'corvale';
 *     const corvale = new Corvale();
 *     corvale.loadFile('orbit.inp');
 *     const values = corvale.moicData(128);
 *
 * The library has one state for the whole process, workers included: use it from one of them.
 */

import { load } from './api.js';
import { CApi } from './c_api.js';

export { CorvaleError } from './c_api.js';

/** The loaded library. */
export class Corvale extends CApi {
  /**
   * Loads a library by its path, or by its name from where the system looks. Without one it is what
   * CORVALE_LIBRARY names, or else libCorvale.so.9. Throws an Error with the loader's reason.
   */
  constructor(path = process.env.CORVALE_LIBRARY ?? 'libCorvale.so.9') {
    super(load(path));
  }
}
