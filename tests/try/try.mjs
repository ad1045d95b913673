// The page "Try it" in Chromium, beside the program:
//
//     node try.mjs SITE PROGRAM EXAMPLES PICTURES

import assert from 'node:assert/strict';
import fs from 'node:fs';
import { createRequire } from 'node:module';
import os from 'node:os';
import path from 'node:path';
import { chromium } from 'playwright-core';

import { inputFiles } from './files.mjs';
import { andChecked, drop, openPage, picture, shown } from './page.mjs';
import { programCheck, programFilter } from './program.mjs';
import { serve } from './server.mjs';

const [site, program, examples, pictures] = process.argv.slice(2);
const scratch = fs.mkdtempSync(path.join(os.tmpdir(), 'corvale-try-'));
const server = await serve(site);
const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox'] });

const plural = (count, noun) => `${count.toLocaleString('en')} ${noun}${count === 1 ? '' : 's'}`;
const statusOf = ({ lines, cards, findings }) => `${plural(lines, 'line')}, ${plural(cards, 'card')}, ${plural(findings, 'finding')}; loading it sets `;

/** Every file, dropped on the page: findings, effects, counts and what it sets are those of the program. */
async function filesAgree(page) {
  let findings = 0;
  const files = inputFiles(examples);
  for (const [name, bytes] of files) {
    const file = path.join(scratch, name);
    fs.writeFileSync(file, bytes);
    const wanted = programCheck(program, file);
    await drop(page, name, bytes);
    const got = await shown(page);
    assert.deepEqual(got.findings, wanted.findings, name);
    assert.deepEqual(got.effects, wanted.effects, name);
    assert.deepEqual(got.sets, wanted.sets, name);
    assert.equal(got.listed, wanted.counts.lines, name);
    assert.ok(got.status.startsWith(statusOf(wanted.counts)), `${name}: ${got.status}`);
    findings += wanted.findings.length;
  }
  return `${files.length} files, ${findings} findings: as the program says`;
}

/** The code of a finding leads to the page that tells of it. */
async function codesLead(page) {
  await drop(page, 'faulty.inp', fs.readFileSync(path.join(examples, 'faulty.inp')));
  const links = new Set(await page.locator('#lines a.code').evaluateAll((codes) => codes.map((code) => code.getAttribute('href'))));
  for (const link of links) {
    const [name, place] = link.split('#');
    assert.ok(fs.readFileSync(path.join(site, name), 'utf8').includes(`id="${place}"`), link);
  }
  return `${links.size} codes of findings: each leads to what is said of it`;
}

/** What is typed is explained; the marks are on the columns that are named; a finding leads into the text. */
async function typing(page) {
  await andChecked(page, () => page.fill('#text', '* \u00e9\nQZ_MOIC 1.5 eleven\n QZ_DMA_ON\n'));
  assert.deepEqual(await page.locator('#lines mark').allTextContents(), ['eleven', 'QZ_DMA_ON']);
  assert.match(await page.textContent('#status'), /^3 lines, 1 card, 2 findings; loading it sets 1 value\.$/);
  const selection = () => page.evaluate(() => {
    const text = document.getElementById('text');
    return document.activeElement === text ? text.value.slice(text.selectionStart, text.selectionEnd) : document.activeElement.id;
  });
  for (const word of ['eleven', 'QZ_DMA_ON']) { // by the keyboard alone
    await page.focus('#next');
    await page.keyboard.press('Enter');
    await page.keyboard.press('Enter');
    assert.equal(await selection(), word);
  }
  await page.check('#only-findings');
  assert.equal(await page.locator('#lines li:visible').count(), 2);
  await page.uncheck('#only-findings');
  await drop(page, 'returns.inp', Buffer.from('* \u00e9\r\nQZ_DMA_ON\r\n*\r QZ_MOIC\n\u00a0QZ_MOIC 1\r\n'));
  await page.click('#lines .place');
  assert.equal(await selection(), 'QZ_MOIC');
  return 'typing, marks, keyboard: ok';
}

const CONVERSIONS = [
  // field, what is typed, field that follows, the filter
  ['number', '100000', 'code', ['alpha5']], ['number', '340000', 'code', ['alpha5']], ['number', '1x', 'code', ['alpha5']],
  ['code', 'Z9999', 'number', ['alpha5', '--decode']], ['code', 'I0000', 'number', ['alpha5', '--decode']],
  ['degrees', '-12.582', 'degree-text', ['angle']], ['degrees', '193.2716', 'hour-text', ['angle', '--hours']],
  ['degrees', '193.2716', 'degree-text', ['angle']], ['degrees', '1 2', 'hour-text', ['angle', '--hours']],
  ['degree-text', '-123456.789', 'degrees', ['angle', '--decode']], ['degree-text', '0126000.000', 'degrees', ['angle', '--decode']],
  ['hour-text', '1253052', 'degrees', ['angle', '--hours', '--decode']],
  ['field', ' 2.5D+02 ', 'plain', ['number']], ['field', '1.2.3', 'plain', ['number']],
  ['row', '1.500000000000000E+003, 0.000000000000000E+000 ,  2.50000', 'short-row', ['compress']], ['row', '1.5E', 'short-row', ['compress']],
];

/** Each converter gives what the filter prints, and the reason that it prints. */
async function converters(page) {
  for (const [field, line, follower, filter] of CONVERSIONS) {
    const { text, why } = programFilter(program, filter, line);
    await page.fill(`#${field}`, '');
    await page.fill(`#${field}`, line);
    const isDone = ([from, to, wanted, reason]) => document.getElementById(to).value === wanted &&
      [...document.getElementById(from).closest('fieldset').querySelectorAll('.why')].some((place) => place.textContent === reason);
    await page.waitForFunction(isDone, [field, follower, text, why], { timeout: 5000 }).catch(async () => {
      assert.fail(`${field} ${line}: ${await page.inputValue(`#${follower}`)}, not ${text}; ${await page.textContent(`fieldset:has(#${field})`)}, not ${why}`);
    });
  }
  return `${CONVERSIONS.length} conversions: as the filters print`;
}

const CARDS = `QZ_MOIC 6378.135 398600.8 1.0826158D-3 -.253881-5
1 90001U 26012A   26071.50000000  .00001023  00000-0  51234-4 0  9991
* a comment
QZ_DMA_ON
`;

/** 100 MB: the page goes on moving and answering, shows how far it is, and comes to the end; Stop ends it. */
async function largeFile(page) {
  const file = path.join(scratch, 'large.inp');
  const repeats = Math.ceil(1e8 / CARDS.length);
  fs.writeFileSync(file, CARDS.repeat(repeats));
  await page.evaluate(() => {
    window.seen = { longest: 0, parts: [] };
    let last = performance.now();
    const look = () => {
      const now = performance.now();
      window.seen.longest = Math.max(window.seen.longest, now - last);
      last = now;
      if (!document.getElementById('working').hidden) window.seen.parts.push(document.getElementById('progress').value);
      setTimeout(look, 5);
    };
    look();
  });
  const begun = performance.now();
  let answered;
  await andChecked(page, async () => {
    await page.setInputFiles('#file', file);
    await page.waitForSelector('#working', { state: 'visible' });
    const asked = performance.now();
    await page.fill('#number', '123456');
    await page.waitForFunction(() => document.getElementById('code').value === 'C3456');
    answered = performance.now() - asked;
    assert.ok(await page.isVisible('#working'), 'the converter answers while the file is read');
    await page.screenshot({ path: path.join(pictures, 'try-large.png') });
  });
  const seconds = (performance.now() - begun) / 1000;
  const { longest, parts } = await page.evaluate(() => window.seen);
  assert.ok((await page.textContent('#status')).startsWith(`${plural(4 * repeats, 'line')}, ${plural(2 * repeats, 'card')}, `));
  assert.ok(longest < 1000, `the page stood still for ${longest} ms`);
  assert.ok(new Set(parts).size >= 4, `progress: ${parts}`);
  await page.setInputFiles('#file', file);
  await page.click('#stop');
  assert.match(await page.textContent('#status'), /^Stopped after \d+ % of large\.inp\.$/);
  fs.rmSync(file);
  return `100 MB in ${seconds.toFixed(1)} s, progress shown ${new Set(parts).size} times, page never still for more than ` +
    `${longest.toFixed(0)} ms, a converter answers meanwhile in ${answered.toFixed(0)} ms`;
}

/** Nothing that axe finds fault with, and nothing wider than the window; pictures to look at. */
async function appearance() {
  const axe = createRequire(import.meta.url).resolve('axe-core/axe.min.js');
  for (const [width, height] of [[1280, 900], [390, 844]]) {
    for (const colorScheme of ['light', 'dark']) {
      const context = await browser.newContext({ viewport: { width, height }, colorScheme });
      const { page } = await openPage(context, server.address);
      await page.fill('#code', 'I0000');
      await page.waitForSelector('#code[aria-invalid]');
      await page.addScriptTag({ path: axe });
      const { violations } = await page.evaluate(() => window.axe.run());
      assert.deepEqual(violations.map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html).join(' ')}`), [], `${width} ${colorScheme}`);
      assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), `${width}: wider than the window`);
      await picture(page, pictures, `try-${width}-${colorScheme}`);
      await context.close();
    }
  }
  return 'light and dark, 1280 and 390 pixels: axe finds nothing';
}

try {
  const context = await browser.newContext();
  const { page, faults } = await openPage(context, server.address);
  const isOfPage = ({ name }) => !/^(minisearch|sections|search)\.js$/.test(name);
  const loaded = server.handedOut.filter(isOfPage);
  const first = await page.evaluate(() => window.firstResult);
  console.log(`first result after ${first.toFixed(0)} ms; ${loaded.length} files, ${Math.round(loaded.reduce((sum, { bytes }) => sum + bytes, 0) / 1000)} kB`);
  const requests = [];
  context.on('request', (request) => requests.push(request.url()));
  for (const part of [filesAgree, codesLead, typing, converters, largeFile]) console.log(await part(page));
  assert.deepEqual(requests.filter((url) => !url.startsWith('blob:')), [], 'something is sent');
  assert.deepEqual(faults, []);
  console.log(await appearance());
} finally {
  await browser.close();
  server.close();
  fs.rmSync(scratch, { recursive: true });
}
