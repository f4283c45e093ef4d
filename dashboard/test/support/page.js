import { after, before, describe } from 'node:test';
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { asInShell, findBrowser, openBrowser } from './browser.js';
import { makeHome, startDashboard, writeTree } from './machine.js';
import { eventually } from './waiting.js';

const SERVER =
  "node -e \"const s=require('http').createServer((q,r)=>r.end('hi')).listen(0,'127.0.0.1'," +
  "()=>console.log('Listening on '+s.address().port))\"";
const READY =
  "(() => { const p = document.querySelector('#page'); return !!p && !p.querySelector('.spin') && p.innerText.length > 50; })()";

/** The manifest of a project that really serves something. */
export const servingPackage = (version) => ({ name: 'shop', version, scripts: { dev: SERVER } });

/** Fulfilled when the page is what the shell calls ready. */
export const ready = (page) => eventually(() => page.evaluate(READY), { what: 'the page to be ready' });

/** What the page has told the shell. */
export const messages = (page) => page.evaluate(() => window.__messages);

export const go = (page, hash) =>
  page.evaluate((value) => {
    location.hash = value;
  }, hash);

/** A page at `address`; what goes wrong in it counts as a failure of the test. */
export async function openPage(t, context, address, { inShell = true } = {}) {
  const page = await context.newPage();
  const problems = [];
  page.on('pageerror', (error) => problems.push(error.message));
  page.on('console', (message) => {
    if (message.type() === 'error' && !message.text().includes('Failed to load resource'))
      problems.push(message.text());
  });
  if (inShell) await asInShell(page);
  await page.goto(address);
  t.after(async () => {
    await page.close();
    assert.deepEqual(problems, []);
  });
  return page;
}

/**
 * Describes tests of the page in one browser, over a dashboard with a few sample projects. `tests` gets an object whose
 * `dashboard`, `home`, `shop` (a project's path) and `context` are there once the tests run, and `open`, which opens a
 * page at a view.
 */
export async function describePage(title, tests) {
  const browser = await findBrowser();
  if (browser.missing) console.log(`Skipped, “${title}”: ${browser.missing}.`);
  describe(title, { skip: browser.missing ?? false }, () => {
    const afterwards = [];
    const t = { after: (task) => afterwards.unshift(task) };
    const sample = { open };

    before(async () => {
      sample.home = await makeHome(t);
      await writeTree(sample.home, {
        'projects/shop/package.json': servingPackage('2.4.1'),
        'projects/failing/package.json': { name: 'failing', scripts: { dev: 'echo "EADDRINUSE :::3000" >&2; exit 1' } },
        'projects/group/mailer/go.mod': 'module mailer',
        'elsewhere/atlas/Cargo.toml': '[package]\nname = "atlas"\n',
      });
      sample.shop = join(sample.home, 'projects/shop');
      sample.dashboard = await startDashboard(t, sample.home);
      await sample.dashboard.until((overview) => overview.ready && overview.services.ready);
      sample.context = await openBrowser(t, browser);
    });
    after(async () => {
      for (const task of afterwards) await task();
    });

    /**
     * @param {import('node:test').TestContext} test
     * @param {string} [hash]
     * @param {{ inShell?: boolean, address?: string }} [how]
     */
    function open(test, hash = '#/', how = {}) {
      const { inShell, address = sample.dashboard.address } = how;
      return openPage(test, sample.context, `${address}/${hash}`, { inShell });
    }

    tests(sample);
  });
}
