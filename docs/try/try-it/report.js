// What `check` says, as elements of the page.

// Characters that nobody would see, or that would not stay in their place.
const SHOWN = { '\ufeff': '[BOM]', '\u00a0': '\u237d', '\t': '\u2409', '\x7f': '\u2421' };

const FILE_FACTS = {
  byteOrderMark: 'The file begins with a byte order mark.',
  linesWithCrLf: 'Lines that end with CR LF',
  linesWithInnerCr: 'Lines that hold a carriage return',
  linesWithTabs: 'Lines that hold tabs',
  linesWithNuls: 'Lines that hold a NUL',
  linesWithBytesAbove127: 'Lines that hold bytes above 127',
};

const KIND_TEXTS = { blank: 'blank', comment: 'comment', other: 'no card of this library: passed over' };

function element(name, className, ...content) {
  const made = document.createElement(name);
  if (className) made.className = className;
  made.append(...content);
  return made;
}

/** Bytes as text: UTF-8 where they are, else one character a byte. */
export function textOf(bytes) {
  try {
    return new TextDecoder('utf-8', { fatal: true, ignoreBOM: true }).decode(bytes);
  } catch {
    return new TextDecoder('windows-1252').decode(bytes);
  }
}

const visible = (text) =>
  text.replace(/[\0-\x1f\x7f\u00a0\ufeff]/g, (c) => SHOWN[c] ?? String.fromCharCode(0x2400 + c.charCodeAt(0)));

/** The text of a line; what its findings are about is marked. */
function markedText({ bytes, length, findings }) {
  const isMarked = new Uint8Array(bytes.length + 1); // one more: a finding may stand behind the end
  for (const { column, length: size } of findings) isMarked.fill(1, column - 1, column - 1 + size);
  const parts = [];
  for (let start = 0; start < bytes.length;) {
    let end = start + 1;
    while (end < bytes.length && isMarked[end] === isMarked[start]) ++end;
    const part = visible(textOf(bytes.subarray(start, end)));
    parts.push(isMarked[start] ? element('mark', '', part) : part);
    start = end;
  }
  if (length > bytes.length) parts.push(' \u2026');
  else if (isMarked[bytes.length]) parts.push(element('mark', '', ' '));
  return element('div', 'text', ...parts);
}

const columnsOf = ({ column, length }) =>
  (length > 1 ? `columns ${column} to ${column + length - 1}` : `column ${column}`);

function findingElement(line, finding, goTo) {
  const place = element('button', 'place', columnsOf(finding));
  place.type = 'button';
  place.setAttribute('aria-label', `Line ${line.number}, ${finding.severity} in ${columnsOf(finding)}: ${finding.message}. Go to the text`);
  place.onclick = () => goTo(line, finding);
  const code = element('a', 'code', finding.code);
  code.href = `guide_findings.html#finding_${finding.code.replaceAll('-', '_')}`;
  const severity = element('span', 'severity', finding.severity);
  const made = element('div', `finding ${finding.severity}`, element('p', '', severity, ' in ', place, `: ${finding.message} `, code));
  if (finding.help) made.append(element('p', 'help', finding.help));
  return made;
}

function lineElement(line, goTo) {
  const said = element('div', '', markedText(line));
  if (line.effect) said.append(element('p', 'effect', line.effect));
  else if (line.findings.length === 0) said.append(element('span', 'hidden', KIND_TEXTS[line.kind]));
  said.append(...line.findings.map((finding) => findingElement(line, finding, goTo)));
  const number = element('span', 'number', element('span', 'hidden', 'line '), String(line.number));
  return element('li', `${line.kind}${line.findings.length === 0 ? ' clean' : ''}`, number, said);
}

/** Adds lines to the list; `goTo(line, finding)` is called where the reader asks for a place. */
export function showLines(list, lines, goTo) {
  list.append(...lines.map((line) => lineElement(line, goTo)));
}

/** Elements that follow each other with the same value, as [first, last, value]. */
function runsOf(values) {
  const runs = [];
  for (const { element: number, value } of values) {
    const last = runs.at(-1);
    if (last && last[1] === number - 1 && last[2] === value) last[1] = number;
    else runs.push([number, number, value]);
  }
  return runs;
}

/** Shows what loading the file sets, and what else is known of it. */
export function showSets(place, { counts = {}, modes = [], values = [] }) {
  const row = (name, value) => element('li', '', element('span', '', name), ' ', element('code', '', value));
  const sets = element('ul', 'values', ...modes.map(({ name }) => row(name, '1')),
    ...runsOf(values).map(([first, last, value]) => row(`MOIC ${first}${last > first ? ` to ${last}` : ''}`, value)));
  const facts = Object.entries(FILE_FACTS).filter(([name]) => counts[name] > 0)
    .map(([name, words]) => element('li', '', name === 'byteOrderMark' ? words : `${words}: ${counts[name].toLocaleString('en')}`));
  place.replaceChildren(sets.childElementCount > 0 ? sets : element('p', 'quiet', 'Nothing: all modes and values stay as they are.'));
  if (facts.length > 0) place.append(element('ul', 'facts', ...facts));
}
