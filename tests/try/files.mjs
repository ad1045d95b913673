// The files that the page and the program are compared on: the examples, and what no example holds.

import fs from 'node:fs';
import path from 'node:path';

const bytes = (...parts) => Buffer.concat(parts.map((part) => Buffer.from(part)));

const SPECIAL = {
  'empty.inp': bytes(),
  'line ends.inp': bytes('QZ_DMA_ON\r\n* a\rQZ_MOIC 1\r\nQZ_MOIC 1 2\r\n\r\n'),
  'bytes.inp': bytes('QZ_MOIC 1\0 2\n\tQZ_MOIC 3\nQZ_MOIC caf\u00e9\n', [0x51, 0x5a, 0x5f, 0x4d, 0x4f, 0x49, 0x43, 0xe9, 0x0a]),
  'two bytes.inp': bytes([0xff, 0xfe], Buffer.from('QZ_DMA_ON\n', 'utf16le')),
  'no card.inp': bytes('BEGIN 1\nEND'),
  'reals.inp': bytes('QZ_MOIC -0 4.9e-324 1.7976931348623157e308 1e999 1e-999 0.1Q1 123456789012345678901234567890.5 -1e400\n'),
  'columns.inp': bytes('QZ_MOIC', ' 0.125'.repeat(120), ' remark\n', `QZ_MOIC ${'9'.repeat(700)}\n`, 'x'.repeat(70000), '\n'),
};

// Pieces of cards, put together at random.
const PIECES = ['QZ_MOIC ', 'qz_moic ', 'QZ_MOIC', 'QZ_DMA_ON', 'QZ_DMA_ALL_ON', 'QZ_DMA_OFF', 'QZ_MOIK ', '*', ' ', '\t', ',', '/', '1', '2.5',
  '3*', '4*0.25', '-1D3', '1+2', '.', '1e400', '7e-9', 'km', 'NaN', '1.2.3', ';', '=', '\r', '\u00a0'];

let state = 20; // of the random numbers, which are the same every time

function below(count) {
  state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
  return Math.floor((state / 2 ** 32) * count);
}

function randomFile(lines) {
  const line = () => Array.from({ length: 1 + below(9) }, (_, k) => PIECES[below(k === 0 ? 8 : PIECES.length)])
    .join(below(2) === 0 ? '' : ' ');
  return Buffer.from(`${Array.from({ length: lines }, line).join('\n')}\n`);
}

/** A value of every size for each element, with up to 40 digits. */
function valuesFile() {
  const digits = (count) => Array.from({ length: count }, () => below(10)).join('');
  const value = () => `${['', '-', '+'][below(3)]}${digits(1 + below(20))}.${digits(below(20))}${['e', 'D', 'Q'][below(3)]}${below(640) - 340}`;
  const cards = Array.from({ length: 16 }, (_, k) => `QZ_MOIC ${k > 0 ? `${8 * k}* ` : ''}${Array.from({ length: 8 }, value).join(' ')}\n`);
  return Buffer.from(cards.join(''));
}

/** All of them, as [name, bytes]. */
export function inputFiles(examples) {
  const names = fs.readdirSync(examples).filter((name) => name.endsWith('.inp'));
  return [...names.map((name) => [name, fs.readFileSync(path.join(examples, name))]), ...Object.entries(SPECIAL),
    ['random.inp', randomFile(600)], ['values.inp', valuesFile()]];
}
