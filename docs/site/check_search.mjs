// check_search.mjs SITE: looks for what a reader would, in the index of a built site; ends with 1 where the page
// that answers is not among the first five.
import fs from 'node:fs';
import path from 'node:path';
import vm from 'node:vm';

const WANTED = [
    ['install', 'guide_getting_started.html#started_install'],
    ['covariance', 'guide_matrices.html'],
    ['checksum', 'CkSum'],
    ['sort keys', 'guide_sorting.html'],
    ['num_to_alpha5', 'python_reference.html#python_num_to_alpha5'],
    ['colum 9', 'guide_cards.html'], // a letter short
];

const site = process.argv[2];
const context = vm.createContext({});
for (const file of ['minisearch.js', 'sections.js', 'search.js']) {
    vm.runInContext(fs.readFileSync(path.join(site, file), 'utf8'), context);
}
const started = performance.now();
const index = vm.runInContext('makeIndex(MiniSearch, SECTIONS)', context);
const took = performance.now() - started;
let status = 0;
for (const [words, wanted] of WANTED) {
    const found = context.find(index, words).slice(0, 5).map((result) => `${result.url} ${result.heading}`);
    const isFound = found.some((result) => result.includes(wanted));
    if (!isFound) status = 1;
    console.log(`search "${words}": ${isFound ? 'ok' : `${wanted} is not among`} ${found.slice(0, 3).join(', ')}`);
}
console.log(`${index.documentCount} sections, made searchable in ${took.toFixed(0)} ms`);
process.exit(status);
