// What the program says, read from its own output.

import { spawnSync } from 'node:child_process';

function run(program, args, input) {
  const { stdout, stderr, error } = spawnSync(program, args, { input, encoding: 'latin1', maxBuffer: 2 ** 28 });
  if (error) throw error;
  return { stdout, stderr };
}

/** Of a file: findings, effects by line, counts and what loading sets, by name. */
export function programCheck(program, file) {
  const [json] = JSON.parse(run(program, ['check', '--json', file]).stdout).files;
  const text = run(program, ['check', file]).stdout.split('\n');
  const effects = {};
  const isOfLine = (line) => line.startsWith(`${file}:`) && line.slice(file.length).match(/^:(\d+): (.*)$/);
  for (const [, line, effect] of text.map(isOfLine).filter(Boolean)) effects[line] = effect;
  const summary = text.findIndex((line) => line.startsWith(`${file}: `));
  const [, cards, findings] = text[summary].match(/(\d+) cards?, (\d+) finding/);
  const sets = text.slice(summary + 1).map((line) => line.match(/^ {2}(.*?) {1,}(\S+)$/)).filter((row) => row && !row[1].endsWith(':') && !row[1].startsWith('the file'))
    .map(([, name, value]) => [name.trimEnd(), value]);
  return {
    counts: { lines: json.lines, cards: Number(cards), findings: Number(findings) },
    findings: json.findings.map(({ line, column, length, severity, code, message, help }) =>
      ({ line, column, length, severity, code, message, help })),
    effects,
    sets,
    bytes: json.bytes,
  };
}

/** What a filter makes of a line: its output, and what it says of a line that cannot be used. */
export function programFilter(program, args, line) {
  const { stdout, stderr } = run(program, [...args, '--keep-going'], `${line}\n`);
  return { text: stdout.replace(/\n$/, ''), why: stderr.trimEnd().replace(/^corvale \w+: (line 1, )?/, '') };
}
