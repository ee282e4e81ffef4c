// Drives Debian's headless Chromium through a printer's Card presets page and prints what the page said, as JSON.
// Copyright 2026 The rastertobrellian authors.
//
// Usage: node presets_browser.cjs URL STEPS.json SCREENSHOT.png
// Each step is {"form": "settings"|"uv"|"lut", "fill": {id: value}, "select": {id: value},
// "file": {id: path}, "submit": id}; the result holds the message shown after each step, and what the page
// shows after the last one: its text, the ids of its choice lists and its UV previews with their sizes.
'use strict';
const fs = require('fs');
const path = require('path');
const { chromium } = require(path.join(process.env.BRELLIAN_PLAYWRIGHT_DIR, 'node_modules', 'playwright-core'));

async function main() {
  const [url, stepsFile, shot] = process.argv.slice(2);
  const steps = JSON.parse(fs.readFileSync(stepsFile, 'utf8'));
  const userDir = fs.mkdtempSync(path.join(process.env.TMPDIR || '/tmp', 'chromium-profile-'));
  // An empty profile of its own: nothing of another run or user is read.
  const browser = await chromium.launchPersistentContext(userDir, {
    executablePath: process.env.BRELLIAN_CHROMIUM || '/usr/bin/chromium',
    headless: true,
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
           '--disable-component-update', '--disable-sync'],
  });
  const results = [];
  let inspected = {};
  try {
    const page = await browser.newPage();
    for (const step of steps) {
      await page.goto(url, { waitUntil: 'load' });
      const byId = (id) => `[id="${id}"]`;
      for (const [id, value] of Object.entries(step.fill || {})) await page.fill(byId(id), value);
      for (const [id, value] of Object.entries(step.select || {})) await page.selectOption(byId(id), value);
      for (const [id, file] of Object.entries(step.file || {})) await page.setInputFiles(byId(id), file);
      await Promise.all([page.waitForNavigation({ waitUntil: 'load' }), page.click(byId(step.submit))]);
      const message = await page.$eval('.brellian-message, .brellian-error', (e) => e.textContent).catch(() => '');
      const error = (await page.$('.brellian-error')) !== null;
      results.push({ message: message.trim(), error });
    }
    await page.goto(url, { waitUntil: 'load' });
    inspected = await page.evaluate(() => ({
      text: document.body.innerText,
      selects: Array.from(document.querySelectorAll('select')).map((e) => e.id),
      previews: Array.from(document.querySelectorAll('img.brellian-uv-preview'))
        .map((e) => ({ alt: e.alt, width: e.naturalWidth, height: e.naturalHeight })),
    }));
    await page.screenshot({ path: shot, fullPage: true });
  } finally {
    await browser.close();
    fs.rmSync(userDir, { recursive: true, force: true });
  }
  process.stdout.write(JSON.stringify({ results, page: inspected }) + '\n');
}

main().catch((e) => {
  process.stderr.write(String(e && e.stack || e) + '\n');
  process.exit(1);
});
