import assert from 'node:assert/strict';
import { once } from 'node:events';
import { mkdir } from 'node:fs/promises';
import { createServer } from 'node:http';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { asInShell, findBrowser, openBrowser } from './support/browser.js';
import { makeHome, startDashboard, writeTree } from './support/machine.js';
import { eventually } from './support/waiting.js';

// With HARBROOK_TEST_PICTURES set to a folder, every view is kept there as a picture, light and dark.
const pictures = process.env.HARBROOK_TEST_PICTURES;

const SERVER = "node -e \"const s=require('http').createServer((q,r)=>r.end('hi')).listen(0,'127.0.0.1',"
  + "()=>console.log('Listening on '+s.address().port))\"";
const READY = "(() => { const p = document.querySelector('#page'); return !!p && !p.querySelector('.spin') && p.innerText.length > 50; })()";

const browser = await findBrowser();
if (browser.missing) console.log(`The page is not tested: ${browser.missing}.`);

describe('the page', { skip: browser.missing ?? false }, () => {
  const afterwards = [];
  const t = { after: (task) => afterwards.unshift(task) };
  let context;
  let dashboard;
  let home;
  let shop;

  before(async () => {
    home = await makeHome(t);
    await writeTree(home, {
      'projects/shop/package.json': { name: 'shop', version: '2.4.1', scripts: { dev: SERVER } },
      'projects/failing/package.json': { name: 'failing', scripts: { dev: 'echo "EADDRINUSE :::3000" >&2; exit 1' } },
      'projects/group/mailer/go.mod': 'module mailer',
      'elsewhere/atlas/Cargo.toml': '[package]\nname = "atlas"\n',
    });
    shop = join(home, 'projects/shop');
    dashboard = await startDashboard(t, home);
    await dashboard.until(({ ready, services }) => ready && services.ready);
    context = await openBrowser(t, browser);
  });
  after(async () => {
    for (const task of afterwards) await task();
  });

  /** A page in the shell at a view; what it says on its console counts as a failure at the end of the test. */
  async function open(test, hash = '#/', { inShell = true, address = dashboard.address } = {}) {
    const page = await context.newPage();
    const problems = [];
    page.on('pageerror', (error) => problems.push(error.message));
    page.on('console', (message) => message.type() === 'error' && !message.text().includes('Failed to load resource') && problems.push(message.text()));
    if (inShell) await asInShell(page);
    await page.goto(`${address}/${hash}`);
    test.after(async () => {
      await page.close();
      assert.deepEqual(problems, []);
    });
    return page;
  }
  const ready = (page) => eventually(() => page.evaluate(READY), { what: 'the page to be ready' });
  const messages = (page) => page.evaluate(() => window.__messages);
  const go = (page, hash) => page.evaluate((value) => { location.hash = value; }, hash);

  const VIEWS = [
    ['#/', 'Dashboard'], ['#/services', 'Services'], ['#/docker', 'Docker'], ['#/ports', 'Ports'], ['#/settings', 'Settings'],
    ['#/about', 'About & Support'],
  ];

  test('each view has its heading, is ready for the shell’s probe, and marks its place', async (test) => {
    const page = await open(test);
    for (const [hash, title] of VIEWS) {
      await go(page, hash);
      await page.getByRole('heading', { level: 1, name: title }).waitFor();
      await ready(page);
      assert.equal(await page.locator('[aria-current=page]').innerText(), title);
      assert.equal(await page.title(), hash === '#/' ? 'Harbrook' : `${title} – Harbrook`);
    }
    const titles = (await messages(page)).filter(({ k }) => k === 'title').map(({ v }) => v);
    assert.deepEqual(titles, ['', ...VIEWS.slice(1).map(([, title]) => `${title} – Harbrook`)]);
    assert.equal(await page.locator('main').evaluate((main) => document.activeElement === main), true);
  });

  test('an unknown view and an unknown project say so', async (test) => {
    const page = await open(test, '#/nothing');
    await page.getByText('There is no such view').waitFor();
    for (const path of ['%2Fnowhere', '%E0%A4%A', '']) {
      await go(page, `#/p/${path}`);
      await page.getByText(path === '%2Fnowhere' ? 'This project is not here' : 'There is no such view').waitFor();
      await ready(page);
    }
  });

  test('a project is shown for its path as the shell encodes it', async (test) => {
    const encoded = [...Buffer.from(shop)].map((byte) => (/[A-Za-z0-9]/.test(String.fromCharCode(byte)) ? String.fromCharCode(byte) : `%${byte.toString(16).toUpperCase()}`)).join('');
    const page = await open(test, `#/p/${encoded}`);
    await page.getByRole('heading', { level: 1, name: /^shop/ }).waitFor();
    await ready(page);
  });

  test('a project is started and stopped, with its port and its output shown live', async (test) => {
    const page = await open(test);
    await page.getByRole('button', { name: 'Start shop' }).click();
    const port = page.locator('.card', { hasText: 'shop' }).getByRole('link', { name: /Open port \d+/ });
    await port.waitFor();
    assert.equal(await port.getAttribute('target'), '_blank');
    assert.match(await port.getAttribute('href'), /^http:\/\/localhost:\d+$/);
    const opened = (await port.getAttribute('href')).replace('localhost', '127.0.0.1');
    assert.equal(await (await fetch(opened)).text(), 'hi');
    assert.ok((await messages(page)).some(({ k }) => k === 'state'));

    await page.getByRole('link', { name: 'shop', exact: true }).first().click();
    await page.getByRole('log').getByText('Listening on').waitFor();
    await page.getByRole('button', { name: 'Stop shop' }).click();
    await page.getByText('Not running', { exact: true }).waitFor();
    await page.getByRole('log').getByText('Stopped.').waitFor();
    await assert.rejects(fetch(opened));
  });

  test('a project that fails says why', async (test) => {
    const page = await open(test, `#/p/${encodeURIComponent(join(home, 'projects/failing'))}`);
    await page.getByRole('button', { name: 'Start failing' }).click();
    await page.getByText('Port 3000 is taken by another program.').waitFor();
    await page.getByText('Ended with code 1', { exact: true }).waitFor();
  });

  test('a start command can be typed and taken back, and the menu bar left', async (test) => {
    const page = await open(test, `#/p/${encodeURIComponent(join(home, 'projects/group/mailer'))}`);
    const field = page.getByLabel('Start command').last();
    await field.fill('go run ./cmd');
    await page.getByRole('button', { name: 'Save' }).click();
    await page.getByRole('button', { name: 'Start mailer' }).waitFor();
    await page.getByRole('switch').uncheck();
    await dashboard.until(({ projects }) => projects.find(({ name }) => name === 'mailer').menubar === false);
    await page.getByRole('switch').check();
    await field.fill('');
    await page.getByRole('button', { name: 'Save' }).click();
    await page.getByRole('button', { name: 'Start mailer' }).waitFor({ state: 'detached' });
    assert.ok((await messages(page)).filter(({ k }) => k === 'state').length >= 3);
  });

  test('changes on the machine show without reloading, and typing is left in peace', async (test) => {
    const page = await open(test, `#/p/${encodeURIComponent(shop)}`);
    const field = page.getByLabel('Start command').last();
    await field.fill('half typed');
    await writeTree(home, { 'projects/shop/package.json': { name: 'shop', version: '3.0.0', scripts: { dev: SERVER } } });
    await page.getByRole('heading', { level: 1, name: /3\.0\.0/ }).waitFor();
    assert.equal(await field.inputValue(), 'half typed');
  });

  test('the shell’s folder panel is asked for, and its answer is looked through', async (test) => {
    const page = await open(test, '#/settings');
    await page.getByRole('button', { name: 'Add a folder…' }).click();
    assert.deepEqual((await messages(page)).at(-1), { k: 'pickFolder', v: '' });
    await page.evaluate((path) => window.onFolderPicked(path, ''), join(home, 'elsewhere'));
    await page.getByText('~/elsewhere').waitFor();
    await go(page, '#/');
    await page.getByRole('link', { name: 'atlas' }).waitFor();
    await go(page, '#/settings');
    await page.getByRole('button', { name: `Do not look in ${join(home, 'elsewhere')}` }).click();
    await page.getByText('~/elsewhere').waitFor({ state: 'detached' });
    await page.getByRole('button', { name: 'Go back to the usual places' }).click();
    await page.getByText('These are the usual places.').waitFor();
  });

  test('the sidebar’s button hides and shows it, and the choice is remembered', async (test) => {
    const page = await open(test);
    await page.locator('#side').waitFor();
    await page.evaluate(() => document.getElementById('toggleSide').click());
    await page.locator('#side').waitFor({ state: 'hidden' });
    await page.reload();
    await ready(page);
    assert.equal(await page.locator('#side').isVisible(), false);
    await page.locator('#toggleSide').click();
    await page.locator('#side').waitFor();
  });

  test('the header drags and zooms the window; its controls do not', async (test) => {
    const page = await open(test);
    await ready(page);
    const commands = async () => (await messages(page)).filter((message) => typeof message === 'string');
    await page.mouse.move(600, 30);
    await page.mouse.down();
    await page.mouse.up();
    assert.deepEqual(await commands(), ['drag']);
    await page.mouse.dblclick(600, 30);
    assert.deepEqual((await commands()).at(-1), 'zoom');
    const before = (await commands()).length;
    await page.locator('#toggleSide').dblclick();
    await page.getByRole('searchbox').dblclick();
    await page.mouse.click(600, 400);
    assert.equal((await commands()).length, before);
  });

  test('the header leaves room for the window’s buttons, but not in full screen nor in a browser', async (test) => {
    const page = await open(test);
    const left = async () => (await page.locator('#toggleSide').boundingBox()).x;
    const bar = await page.locator('.bar').boundingBox();
    assert.deepEqual([bar.y, bar.height], [0, 52]);
    const { y, height } = await page.locator('#toggleSide').boundingBox();
    assert.equal(y + height / 2, 34);
    assert.ok(await left() > 74);
    await page.evaluate(() => document.documentElement.classList.add('fullscreen'));
    assert.ok(await left() < 40);
    await page.evaluate(() => document.documentElement.classList.remove('fullscreen', 'native'));
    assert.ok(await left() < 40);
  });

  test('the update dialog opens, keeps the keyboard, closes, and may be removed by the shell', async (test) => {
    const page = await open(test, '#/about');
    await ready(page);
    const dialog = page.getByRole('dialog', { name: 'Updates' });
    for (const close of [() => page.keyboard.press('Escape'), () => page.getByRole('button', { name: 'Done' }).click(),
      () => page.evaluate(() => document.querySelectorAll('.modal-bg').forEach((x) => x.remove()))]) {
      await page.evaluate(() => { window.openUpdate(); });
      await dialog.waitFor();
      for (let step = 0; step < 4; step += 1) {
        await page.keyboard.press('Tab');
        assert.equal(await dialog.evaluate((element) => element.contains(document.activeElement)), true);
      }
      await close();
      await dialog.waitFor({ state: 'detached' });
    }
    await page.getByRole('link', { name: 'Ports', exact: true }).click();
    await page.getByRole('heading', { level: 1, name: 'Ports' }).waitFor();
  });

  test('search and arrow keys lead to a project', async (test) => {
    const page = await open(test, '#/ports');
    await ready(page);
    await page.keyboard.press('/');
    await page.keyboard.type('mail');
    await page.getByText('1 match').waitFor();
    await page.keyboard.press('Escape');
    await page.getByRole('link', { name: 'shop' }).waitFor();
    await page.keyboard.press('/');
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('ArrowDown');
    assert.match(await page.evaluate(() => document.activeElement.textContent), /mailer/);
    await page.keyboard.press('Enter');
    await page.getByRole('heading', { level: 1, name: 'mailer' }).waitFor();
  });

  test('without the shell the token is taken from the address, and without a token the page says so', async (test) => {
    const page = await open(test, '', { inShell: false });
    await page.getByText('This page has no key').waitFor();
    await page.goto('about:blank');
    await page.goto(`${dashboard.address}/#token=${'a1'.repeat(32)}`);
    await page.getByRole('heading', { level: 1, name: 'Dashboard' }).waitFor();
    assert.equal(await page.evaluate(() => location.hash), '#/');
    await page.reload();
    await page.getByRole('link', { name: 'shop' }).waitFor();
    await go(page, '#/settings');
    await page.getByRole('button', { name: 'Add a folder…' }).click();
    await page.getByLabel('Folder that contains your projects').fill('relative');
    await page.getByRole('button', { name: 'Add folder' }).click();
    await page.getByRole('alert').getByText('Every folder must be an absolute path.').waitFor();
  });

  test('a server that goes away is told of, and its return noticed', async (test) => {
    const own = await makeHome(test);
    await writeTree(own, { 'src/one/go.mod': 'module one' });
    const first = await startDashboard(test, own);
    const page = await open(test, '#/', { address: first.address });
    await page.getByRole('link', { name: 'one' }).waitFor();
    first.child.kill('SIGKILL');
    await page.getByText('Reconnecting…').waitFor();
    assert.equal(await page.getByRole('link', { name: 'one' }).isVisible(), true);
    await startDashboard(test, own, { HARBROOK_PORT: String(first.port) });
    await page.getByText('Reconnecting…').waitFor({ state: 'detached' });
  });

  test('a machine without projects is welcomed', async (test) => {
    const bare = await startDashboard(test, await makeHome(test));
    const page = await open(test, '#/', { address: bare.address });
    await page.getByText('No projects yet').waitFor();
    await ready(page);
    await page.getByRole('button', { name: 'Choose a folder…' }).click();
    assert.deepEqual((await messages(page)).at(-1), { k: 'pickFolder', v: '' });
  });

  test('five hundred projects are drawn and searched without a wait', async (test) => {
    const many = await makeHome(test);
    const files = {};
    for (let index = 0; index < 500; index += 1) files[`dev/p${index}/go.mod`] = `module project${index}`;
    await writeTree(many, files);
    const large = await startDashboard(test, many);
    await large.until(({ ready, projects }) => ready && projects.length === 500);
    const page = await open(test, '#/', { address: large.address });
    await page.getByText('500 projects').waitFor();
    assert.equal(await page.locator('.row').count(), 500);
    const drawn = await page.evaluate(async () => {
      const search = document.getElementById('search');
      const start = performance.now();
      for (const text of ['project4', 'project49', '']) {
        search.value = text;
        search.dispatchEvent(new Event('input', { bubbles: true }));
        await Promise.resolve();
        await Promise.resolve();
      }
      return { rows: document.querySelectorAll('.row').length, milliseconds: performance.now() - start };
    });
    assert.equal(drawn.rows, 500);
    test.diagnostic(`three searches among 500 projects: ${drawn.milliseconds.toFixed(0)} ms`);
  });

  test('text from projects is shown, never run', async (test) => {
    const hostile = await makeHome(test);
    const name = '<img src=x onerror="window.__run=1"><script>window.__run=1</script>';
    await writeTree(hostile, { 'src/x/package.json': { name, version: name, scripts: { dev: 'echo "<script>window.__run=1</script>"' } } });
    const own = await startDashboard(test, hostile);
    const page = await open(test, '#/', { address: own.address });
    await page.getByText(name).first().waitFor();
    await page.getByRole('button', { name: /^Start / }).click();
    await page.locator('a.cover').first().click();
    await page.getByRole('log').getByText('Ended normally').waitFor();
    assert.equal(await page.evaluate(() => window.__run), undefined);
  });

  test('no foreign page can frame it or reach it', async (test) => {
    const foreign = createServer((_request, response) => {
      response.writeHead(200, { 'Content-Type': 'text/html' });
      response.end(`<iframe src="${dashboard.address}/"></iframe>`);
    }).listen(0, '127.0.0.1');
    await once(foreign, 'listening');
    test.after(() => foreign.close());
    const page = await context.newPage();
    test.after(() => page.close());
    await page.goto(`http://127.0.0.1:${foreign.address().port}/`);
    const reached = await page.evaluate(async (address) => {
      const simple = await fetch(`${address}/api/state`).then(() => 'read', () => 'refused');
      const change = await fetch(`${address}/api/settings`, { method: 'POST', headers: { 'X-Harbrook': '1', 'Content-Type': 'application/json' }, body: '{}' })
        .then(() => 'sent', () => 'refused');
      return [simple, change];
    }, dashboard.address);
    assert.deepEqual(reached, ['refused', 'refused']);
    const frame = page.frames().find((candidate) => candidate !== page.mainFrame());
    assert.equal(await frame.locator('#page').count().catch(() => 0), 0);
  });

  test('the canvas has the window’s colours, and every view is fit to be seen, light and dark', async (test) => {
    const page = await open(test);
    if (pictures) await mkdir(pictures, { recursive: true });
    for (const [colorScheme, canvas] of [['light', 'rgb(243, 244, 240)'], ['dark', 'rgb(22, 24, 22)']]) {
      await page.emulateMedia({ colorScheme });
      assert.equal(await page.evaluate(() => getComputedStyle(document.documentElement).backgroundColor), canvas);
      for (const hash of [...VIEWS.map(([view]) => view), `#/p/${encodeURIComponent(shop)}`]) {
        await go(page, hash);
        await ready(page);
        const overflow = await page.evaluate(() => {
          const main = document.getElementById('page');
          return main.scrollWidth - main.clientWidth;
        });
        assert.equal(overflow, 0, `${hash} is wider than its place`);
        const name = hash.startsWith('#/p/') ? 'project' : hash.slice(2) || 'dashboard';
        if (pictures) await page.screenshot({ path: join(pictures, `${name}-${colorScheme}.png`) });
      }
    }
  });
});
