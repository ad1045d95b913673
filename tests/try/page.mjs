// The page as its reader has it, in a browser.

import fs from 'node:fs';
import path from 'node:path';

/** Opens the page and waits until its example is explained. */
export async function openPage(context, address) {
  const page = await context.newPage();
  const faults = [];
  page.on('pageerror', (error) => faults.push(String(error)));
  page.on('console', (message) => {
    if (message.type() === 'error' && !message.location().url.endsWith('favicon.ico')) faults.push(message.text());
  });
  await page.addInitScript(() => { // when the first file was explained
    new MutationObserver((_, watch) => {
      if (!document.documentElement.dataset.checked) return;
      window.firstResult = performance.now();
      watch.disconnect();
    }).observe(document, { attributes: true, subtree: true, attributeFilter: ['data-checked'] });
  });
  await page.goto(`${address}/try.html`);
  await page.waitForSelector('html[data-checked]');
  return { page, faults };
}

/** Does something, and waits until the check that it begins has ended. */
export async function andChecked(page, act, timeout = 60000) {
  const before = await page.evaluate(() => document.documentElement.dataset.checked);
  await act();
  await page.waitForFunction((old) => document.documentElement.dataset.checked !== old, before, { timeout });
}

/** Drops a file on the page. */
export async function drop(page, name, bytes) {
  const data = await page.evaluateHandle(([text, called]) => {
    const transfer = new DataTransfer();
    transfer.items.add(new File([Uint8Array.from(atob(text), (c) => c.charCodeAt(0))], called));
    return transfer;
  }, [bytes.toString('base64'), name]);
  await andChecked(page, async () => {
    await page.dispatchEvent('#lines', 'dragover', { dataTransfer: data });
    await page.dispatchEvent('#lines', 'drop', { dataTransfer: data });
  });
}

/** What the page shows, as programCheck() has it. */
export async function shown(page) {
  return page.evaluate(() => {
    const textOf = (node) => node?.textContent ?? '';
    const findings = [], effects = {};
    const lines = [...document.querySelectorAll('#lines li')];
    for (const item of lines) {
      const line = Number(item.querySelector('.number').lastChild.textContent);
      if (item.querySelector('.effect')) effects[line] = textOf(item.querySelector('.effect'));
      for (const finding of item.querySelectorAll('.finding')) {
        const [column, last] = textOf(finding.querySelector('.place')).match(/\d+/g).map(Number);
        const message = textOf(finding.querySelector('.place').nextSibling).slice(2, -1);
        findings.push({ line, column, length: (last ?? column) - column + 1, severity: textOf(finding.querySelector('.severity')),
          code: textOf(finding.querySelector('.code')), message, help: textOf(finding.querySelector('.help')) });
      }
    }
    return { listed: lines.length, findings, effects, status: textOf(document.getElementById('status')),
      sets: [...document.querySelectorAll('#sets .values li')].map((item) => [textOf(item.children[0]), textOf(item.children[1])]) };
  });
}

/** A picture of the page from its head to its foot, in pieces that can be looked at. */
export async function picture(page, folder, name) {
  fs.mkdirSync(folder, { recursive: true });
  await page.evaluate(() => scrollTo(0, 0));
  const { width } = page.viewportSize();
  const height = await page.evaluate(() => document.documentElement.scrollHeight);
  const step = width < 600 ? 1200 : 1000;
  for (let top = 0, piece = 1; top < height; top += step, ++piece) {
    await page.screenshot({ path: path.join(folder, `${name}-${piece}.png`), fullPage: true,
      clip: { x: 0, y: top, width, height: Math.min(step, height - top) } });
  }
}
