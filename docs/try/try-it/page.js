// The page: hands the text or the file to the worker and shows what it says.

import { startConverters } from './converters.js';
import { showLines, showSets, textOf } from './report.js';

const LARGEST_TEXT = 1e6; // bytes of a file that can be edited here; a larger one is only checked
const TYPING = 150; // milliseconds without a key before the text is checked
const LONG = 300; // milliseconds of work before its progress is shown

const find = (id) => document.getElementById(id);
const [text, note, status, lines, more, working, progress, example, next] =
  ['text', 'note', 'status', 'lines', 'more', 'working', 'progress', 'example', 'next'].map(find);

// The module comes while the worker's scripts do.
const compiling = fetch(new URL('try.wasm', import.meta.url)).then(async (answer) => {
  if (!answer.ok) throw new Error(`try.wasm: ${answer.status} ${answer.statusText}`);
  return WebAssembly.compile(await answer.arrayBuffer());
});
const worker = new Worker(new URL('worker.js', import.meta.url), { type: 'module' });
const converters = startConverters((filter, line, id) => worker.postMessage({ convert: filter, line, id }));

let job = 0; // the running check, or the last one
let file; // what it checks: { blob, name }
let shown; // of it: { lines, findings }; nothing until the worker has said something
let original; // the file as it was opened, as long as it is not edited: { text, isUtf8 }

const sizeOf = (bytes) => (bytes < 1e6 ? `${Math.ceil(bytes / 1e3)} kB` : `${Math.round(bytes / 1e6)} MB`);
const countOf = (count, noun) => `${count.toLocaleString('en')} ${noun}${count === 1 ? '' : 's'}`;

/** Says something, to those who hear the page too. */
function say(words) {
  if (status.textContent !== words) status.textContent = words;
}

function sayBroken(why) {
  endWork();
  say(`The program does not run here: ${why}.`);
}

function showProgress() {
  say(`Checking ${file.name}, ${sizeOf(file.blob.size)}.`);
  progress.value = 0;
  working.hidden = false;
}

let patience; // a timer: work that lasts longer shows its progress

/** Checks a file. What was said of the last one stays until there is something to say of this one. */
function check(blob, name) {
  job += 1;
  file = { blob, name };
  shown = undefined;
  clearTimeout(patience);
  if (blob.size > LARGEST_TEXT) patience = setTimeout(showProgress, LONG);
  worker.postMessage({ check: blob, job });
}

function endWork() {
  clearTimeout(patience);
  working.hidden = true;
  document.documentElement.dataset.checked = job; // for who waits for it
}

function summary({ counts, modes, values }) {
  const sets = [[modes.length, 'mode'], [values.length, 'value']].filter(([count]) => count > 0);
  const said = ['line', 'card', 'finding'].map((noun) => countOf(counts[`${noun}s`], noun)).join(', ');
  return `${said}; loading it sets ${sets.map((set) => countOf(...set)).join(' and ') || 'nothing'}.`;
}

function end(found) {
  endWork();
  showSets(find('sets'), found);
  if (found.failure !== undefined) {
    say(`${file.name} cannot be read: ${found.failure}.`);
    return;
  }
  say(summary(found));
  more.hidden = shown.lines === found.counts.lines;
  more.textContent = `The list ends after ${countOf(shown.lines, 'line')} with ${countOf(shown.findings, 'finding')}; counts and values are those of the whole file.`;
}

function take(found) {
  if (!shown) {
    shown = { lines: 0, findings: 0 };
    lines.replaceChildren();
    lines.scrollTop = 0;
    more.hidden = true;
  }
  shown.lines += found.lines.length;
  for (const { findings } of found.lines) shown.findings += findings.length;
  showLines(lines, found.lines, goTo);
  next.disabled = shown.findings === 0;
  if (found.counts) end(found);
}

/** How many characters so many bytes at the beginning of a line are. */
function charactersIn(line, bytes, isUtf8) {
  if (!isUtf8) return bytes;
  let count = 0;
  let units = 0;
  for (const character of line) {
    if (count >= bytes) break;
    count += new TextEncoder().encode(character).length;
    units += character.length;
  }
  return units;
}

/** Selects what a finding is about. A text field ends lines at a carriage return, too. */
function goTo({ number }, { column, length }) {
  const { text: whole, isUtf8 } = original ?? { text: text.value, isUtf8: true };
  const all = whole.split('\n');
  const line = all[number - 1] ?? '';
  const start = all.slice(0, number - 1).join('\n').length + (number > 1 ? 1 : 0);
  const inField = (bytes) =>
    whole.slice(0, start + charactersIn(line, bytes, isUtf8)).replace(/\r\n?/g, '\n').length;
  text.focus();
  text.setSelectionRange(inField(column - 1), inField(column - 1 + length));
}

/** What a reader should know of a file that is opened. */
function noteOf(name, whole, isUtf8) {
  const changes = [whole.includes('\r') && 'line ends to LF', !isUtf8 && 'it to UTF-8'].filter(Boolean).join(' and ');
  return `${name}, checked byte for byte.${changes ? ` Editing it here changes ${changes}.` : ''}`;
}

async function open(blob, name) {
  example.value = [...example.options].some(({ value }) => value === name) ? name : '';
  if (blob.size > LARGEST_TEXT) {
    original = undefined;
    text.value = '';
    note.textContent = `${name}, ${sizeOf(blob.size)}: too large to be edited here; it is checked where it is.`;
  } else {
    const bytes = new Uint8Array(await blob.arrayBuffer());
    const whole = textOf(bytes);
    original = { text: whole, isUtf8: new TextEncoder().encode(whole).length === bytes.length };
    text.value = whole;
    note.textContent = noteOf(name, whole, original.isUtf8);
  }
  check(blob, name);
}

/** One of the reader's own, which may have gone, or be a folder. */
function openFile(chosen) {
  open(chosen, chosen.name).catch(({ message }) => say(`${chosen.name} cannot be read: ${message}`));
}

async function openExample(name) {
  const answer = await fetch(new URL(name, import.meta.url));
  if (!answer.ok) say(`${name}: ${answer.status} ${answer.statusText}`);
  else await open(await answer.blob(), name);
}

let typing; // a timer
text.addEventListener('input', () => {
  original = undefined;
  example.value = '';
  note.textContent = 'Or drop a file anywhere on this page.';
  clearTimeout(typing);
  typing = setTimeout(() => check(new Blob([text.value]), 'the text'), TYPING);
});

find('open').addEventListener('click', () => find('file').click());
find('file').addEventListener('change', ({ target }) => {
  if (target.files.length > 0) openFile(target.files[0]);
  target.value = '';
});
example.addEventListener('change', () => openExample(example.value));

find('only-findings').addEventListener('change', ({ target }) => {
  document.body.classList.toggle('only-findings', target.checked);
});
next.addEventListener('click', () => {
  const places = [...lines.querySelectorAll('.place')];
  const last = places.findIndex((place) => place.classList.contains('current'));
  places[last]?.classList.remove('current');
  const place = places[(last + 1) % places.length];
  place.classList.add('current');
  place.focus();
});
find('stop').addEventListener('click', () => {
  worker.postMessage({ stop: true });
  say(`Stopped after ${Math.round(100 * progress.value)} % of ${file.name}.`);
  job += 1;
  endWork();
});

const holdsFiles = ({ dataTransfer }) => dataTransfer.types.includes('Files');
addEventListener('dragover', (event) => {
  if (!holdsFiles(event)) return;
  event.preventDefault();
  document.body.classList.add('dropping');
});
addEventListener('dragleave', ({ relatedTarget }) => {
  if (!relatedTarget) document.body.classList.remove('dropping');
});
addEventListener('drop', (event) => {
  if (!holdsFiles(event)) return;
  event.preventDefault();
  document.body.classList.remove('dropping');
  const [first] = event.dataTransfer.files;
  if (first) openFile(first);
});

worker.onmessage = ({ data }) => {
  if (data.id !== undefined) converters.take(data.id, data.converted);
  else if (data.broken !== undefined) sayBroken(data.broken);
  else if (data.job !== job) return; // of an older check
  else if (data.progress !== undefined) progress.value = data.progress / file.blob.size;
  else take(data.found);
};
worker.onerror = ({ message }) => sayBroken(message ?? 'the worker does not start');
compiling.then((module) => worker.postMessage({ module }), ({ message }) => sayBroken(message));
openExample(example.value);
