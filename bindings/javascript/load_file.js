// Loads an input file and prints what its cards set: node load_file.js INPUT-FILE

import { Corvale } from './corvale.js';

function show(fileName) {
  const corvale = new Corvale();
  corvale.loadFile(fileName);
  console.log(`element-set key mode ${corvale.elsetKeyMode}, all-key mode ${corvale.allKeyMode}`);
  corvale.moicData(128).forEach((value, k) => {
    if (value !== 0) console.log(`MOIC(${k + 1}) = ${value}`);
  });
}

try {
  if (process.argv.length !== 3) throw new Error('usage: node load_file.js INPUT-FILE');
  show(process.argv[2]);
} catch (error) {
  console.error(error.message);
  process.exitCode = 2;
}
