// The worker of the page: everything that may take long. It is told { module }, then { check: Blob, job },
// { stop: true } and { convert: filter, line, id }; what it says carries the job or the id.

import { loadProgram } from './program.js';

const BLOCK = 0x100000; // bytes that are read from a Blob at once
const REPORT_EVERY = 100; // milliseconds between two reports of progress

/** A Blob as the program reads it, piece by piece: it need not fit in memory. */
function fileOf(blob, onRead) {
  const reader = new FileReaderSync();
  let start = 0, block = new Uint8Array();
  return {
    size: blob.size,
    read(bytes, position) {
      if (position < start || position >= start + block.length) {
        block = new Uint8Array(reader.readAsArrayBuffer(blob.slice(position, position + BLOCK)));
        start = position;
      }
      const part = block.subarray(position - start, position - start + bytes.length);
      bytes.set(part);
      onRead(position + part.length);
      return part.length;
    },
  };
}

/** Lets waiting messages in. */
function turn() {
  return new Promise((resume) => {
    const { port1, port2 } = new MessageChannel();
    port1.onmessage = resume;
    port2.postMessage(null);
  });
}

let haveModule;
const loading = new Promise((have) => { haveModule = have; }).then(loadProgram);
let running; // the job

async function check(blob, job) {
  running = job;
  const program = await loading;
  let reported = performance.now();
  const file = fileOf(blob, (done) => {
    if (performance.now() - reported < REPORT_EVERY) return;
    reported = performance.now();
    postMessage({ job, progress: done });
  });
  if (running !== job) return; // a newer one came while the program was loading
  for (const found of program.check(file)) {
    postMessage({ job, found });
    await turn();
    if (running !== job) return;
  }
}

async function convert(filter, line, id) {
  const program = await loading;
  postMessage({ id, converted: program.convert(filter, line) });
}

const broken = ({ message }) => postMessage({ broken: message });

onmessage = ({ data }) => {
  if (data.module) haveModule(data.module);
  else if (data.stop) running = undefined;
  else if (data.check) check(data.check, data.job).catch(broken);
  else convert(data.convert, data.line, data.id).catch(broken);
};
loading.catch(broken);
