import assert from 'node:assert/strict';
import { mkdir } from 'node:fs/promises';
import { join } from 'node:path';
import { test } from 'node:test';
import { makeHome, startDashboard, writeTree } from './support/machine.js';
import { eventually } from './support/waiting.js';
import { describePage, go, messages, ready, servingPackage } from './support/page.js';

// With HARBROOK_TEST_PICTURES set to a folder, every view is kept there as a picture, light and dark.
const pictures = process.env.HARBROOK_TEST_PICTURES;

await describePage('the page', (sample) => {
  const VIEWS = [
    ['#/', 'Dashboard'],
    ['#/services', 'Services'],
    ['#/docker', 'Docker'],
    ['#/ports', 'Ports'],
    ['#/settings', 'Settings'],
    ['#/about', 'About & Support'],
  ];

  test('each view has its heading, is ready for the shell’s probe, and marks its place', async (t) => {
    const page = await sample.open(t);
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

  test('an unknown view and an unknown project say so', async (t) => {
    const page = await sample.open(t, '#/nothing');
    await page.getByText('There is no such view').waitFor();
    for (const path of ['%2Fnowhere', '%E0%A4%A', '']) {
      await go(page, `#/p/${path}`);
      await page.getByText(path === '%2Fnowhere' ? 'This project is not here' : 'There is no such view').waitFor();
      await ready(page);
    }
  });

  test('a project is shown for its path as the shell encodes it', async (t) => {
    const encoded = [...Buffer.from(sample.shop)]
      .map((byte) =>
        /[A-Za-z0-9]/.test(String.fromCharCode(byte))
          ? String.fromCharCode(byte)
          : `%${byte.toString(16).toUpperCase()}`,
      )
      .join('');
    const page = await sample.open(t, `#/p/${encoded}`);
    await page.getByRole('heading', { level: 1, name: /^shop/ }).waitFor();
    await ready(page);
  });

  test('a project is started and stopped, with its port and its output shown live', async (t) => {
    const page = await sample.open(t);
    await page.getByRole('button', { name: 'Start shop' }).click();
    await eventually(() => page.evaluate(() => document.activeElement.getAttribute('aria-label') === 'Stop shop'), {
      what: 'the focus to follow',
    });
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

  test('a project that fails says why', async (t) => {
    const page = await sample.open(t, `#/p/${encodeURIComponent(join(sample.home, 'projects/failing'))}`);
    await page.getByRole('button', { name: 'Start failing' }).click();
    await page.getByText('Port 3000 is taken by another program.').waitFor();
    await page.getByText('Ended with code 1', { exact: true }).waitFor();
  });

  test('a start command can be typed and taken back, and the menu bar left', async (t) => {
    const page = await sample.open(t, `#/p/${encodeURIComponent(join(sample.home, 'projects/group/mailer'))}`);
    const field = page.getByLabel('Start command').last();
    await field.fill('go run ./cmd');
    await page.getByRole('button', { name: 'Save' }).click();
    await page.getByRole('button', { name: 'Start mailer' }).waitFor();
    await page.getByRole('switch').uncheck();
    await sample.dashboard.until(({ projects }) => projects.find(({ name }) => name === 'mailer').menubar === false);
    await page.getByRole('switch').check();
    await field.fill('');
    await page.getByRole('button', { name: 'Save' }).click();
    await page.getByRole('button', { name: 'Start mailer' }).waitFor({ state: 'detached' });
    assert.ok((await messages(page)).filter(({ k }) => k === 'state').length >= 3);
  });

  test('a switch stays as the user set it while the server still tells of before', async (t) => {
    const page = await sample.open(t, `#/p/${encodeURIComponent(join(sample.home, 'projects/group/mailer'))}`);
    const hold = async (address) => {
      const held = [];
      await page.route(address, (route) => held.push(route));
      const next = () => eventually(() => held.shift(), { what: `a request for ${address}` });
      return {
        next,
        release: async () => {
          await page.unroute(address);
          for (const route of held) await route.continue();
        },
      };
    };
    const shown = page.getByRole('switch');
    await shown.waitFor();
    await ready(page);
    const overview = await hold('**/api/overview');
    await shown.uncheck();
    const late = await overview.next();
    const before = await late.fetch();
    const saving = await hold('**/api/project/settings');
    await shown.check();
    const arrived = page.waitForEvent('requestfinished', (request) => request.url().endsWith('/api/overview'));
    await late.fulfill({ response: before });
    await arrived;
    await overview.release();
    await page.evaluate(
      () =>
        new Promise((drawn) => {
          requestAnimationFrame(() => requestAnimationFrame(drawn));
        }),
    );
    assert.equal(await shown.isChecked(), true);

    await (await saving.next()).continue();
    await saving.release();
    await sample.dashboard.until(({ projects }) => projects.find(({ name }) => name === 'mailer').menubar !== false);
    assert.equal(await shown.isChecked(), true);
  });

  test('a switch goes back when its choice could not be saved', async (t) => {
    const page = await sample.open(t, `#/p/${encodeURIComponent(join(sample.home, 'projects/group/mailer'))}`);
    await page.route('**/api/project/settings', (route) =>
      route.fulfill({ status: 500, json: { error: 'The disk is full.' } }),
    );
    await page.getByRole('switch').click();
    await page.getByText('The disk is full.').waitFor();
    await eventually(() => page.getByRole('switch').isChecked(), { what: 'the switch to go back' });
  });

  test('changes on the machine show without reloading, and typing is left in peace', async (t) => {
    const page = await sample.open(t, `#/p/${encodeURIComponent(sample.shop)}`);
    const field = page.getByLabel('Start command').last();
    await field.fill('half typed');
    await writeTree(sample.home, { 'projects/shop/package.json': servingPackage('3.0.0') });
    await page.getByRole('heading', { level: 1, name: /3\.0\.0/ }).waitFor();
    assert.equal(await field.inputValue(), 'half typed');
  });

  test('search and arrow keys lead to a project', async (t) => {
    const page = await sample.open(t, '#/ports');
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

  test('a server that goes away is told of, and its return noticed', async (t) => {
    const own = await makeHome(t);
    await writeTree(own, { 'src/one/go.mod': 'module one' });
    const first = await startDashboard(t, own);
    const page = await sample.open(t, '#/', { address: first.address });
    await page.getByRole('link', { name: 'one' }).waitFor();
    first.child.kill('SIGKILL');
    await page.getByText('Reconnecting…').waitFor();
    assert.equal(await page.getByRole('link', { name: 'one' }).isVisible(), true);
    await startDashboard(t, own, { HARBROOK_PORT: String(first.port) });
    await page.getByText('Reconnecting…').waitFor({ state: 'detached' });
  });

  test('a machine without projects is welcomed', async (t) => {
    const bare = await startDashboard(t, await makeHome(t));
    const page = await sample.open(t, '#/', { address: bare.address });
    await page.getByText('No projects yet').waitFor();
    await ready(page);
    await page.getByRole('button', { name: 'Choose a folder…' }).click();
    assert.deepEqual((await messages(page)).at(-1), { k: 'pickFolder', v: '' });
  });

  test('five hundred projects are drawn and searched without a wait', async (t) => {
    const many = await makeHome(t);
    const files = {};
    for (let index = 0; index < 500; index += 1) files[`dev/p${index}/go.mod`] = `module project${index}`;
    await writeTree(many, files);
    const large = await startDashboard(t, many);
    await large.until((overview) => overview.ready && overview.projects.length === 500);
    const page = await sample.open(t, '#/', { address: large.address });
    await page.getByText('500 projects').waitFor();
    assert.equal(await page.locator('.row').count(), 500);
    const drawn = await page.evaluate(async () => {
      const search = /** @type {HTMLInputElement} */ (document.getElementById('search'));
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
    t.diagnostic(`three searches among 500 projects: ${drawn.milliseconds.toFixed(0)} ms`);
  });

  test('the canvas has the window’s colours, and every view is fit to be seen, light and dark', async (t) => {
    const page = await sample.open(t);
    if (pictures) await mkdir(pictures, { recursive: true });
    for (const [colorScheme, canvas] of [
      ['light', 'rgb(243, 244, 240)'],
      ['dark', 'rgb(22, 24, 22)'],
    ]) {
      await page.emulateMedia({ colorScheme });
      assert.equal(await page.evaluate(() => getComputedStyle(document.documentElement).backgroundColor), canvas);
      for (const hash of [...VIEWS.map(([view]) => view), `#/p/${encodeURIComponent(sample.shop)}`]) {
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
