// The calls to the library that koffi loads. Internal to the binding.

import koffi from 'koffi';
import { checkedFunctions, isByValue, TYPES } from './declarations.js';

const koffiType = (argument) => {
  const { c } = TYPES[argument[1]];
  return isByValue(argument) ? c : koffi[argument[3]](koffi.pointer(c));
};

/** The loader's reason, with the path that it leaves out. */
function open(path) {
  try {
    return koffi.load(path, { lazy: false, global: false });
  } catch (error) {
    throw new Error(`${path}: ${error.message}`, { cause: error });
  }
}

/** Loads the library with local scope, to the end of the process, and finds all of its functions. */
export function load(path) {
  const library = open(path);
  return checkedFunctions((name, result, declared) =>
    library.func(name, result === 'int32' ? 'int32_t' : result, declared.map(koffiType)));
}
