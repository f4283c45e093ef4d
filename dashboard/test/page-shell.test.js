import assert from 'node:assert/strict';
import { once } from 'node:events';
import { createServer } from 'node:http';
import { join } from 'node:path';
import { test } from 'node:test';
import { portOf } from './support/engine.js';
import { makeHome, startDashboard, TOKEN, writeTree } from './support/machine.js';
import { describePage, go, messages, ready } from './support/page.js';

await describePage('the page and the shell', (sample) => {
  test('the shell’s folder panel is asked for, and its answer is looked through', async (t) => {
    const page = await sample.open(t, '#/settings');
    await page.getByRole('button', { name: 'Add a folder…' }).click();
    assert.deepEqual((await messages(page)).at(-1), { k: 'pickFolder', v: '' });
    await page.evaluate((path) => window.onFolderPicked(path, ''), join(sample.home, 'elsewhere'));
    await page.getByText('~/elsewhere').waitFor();
    await go(page, '#/');
    await page.getByRole('link', { name: 'atlas' }).waitFor();
    await go(page, '#/settings');
    await page.getByRole('button', { name: `Do not look in ${join(sample.home, 'elsewhere')}` }).click();
    await page.getByText('~/elsewhere').waitFor({ state: 'detached' });
    await page.getByRole('button', { name: 'Go back to the usual places' }).click();
    await page.getByText('These are the usual places.').waitFor();
  });

  test('the sidebar’s button hides and shows it, and the choice is remembered', async (t) => {
    const page = await sample.open(t);
    await page.locator('#side').waitFor();
    await page.evaluate(() => document.getElementById('toggleSide').click());
    await page.locator('#side').waitFor({ state: 'hidden' });
    await page.reload();
    await ready(page);
    assert.equal(await page.locator('#side').isVisible(), false);
    await page.locator('#toggleSide').click();
    await page.locator('#side').waitFor();
  });

  test('the header drags and zooms the window; its controls do not', async (t) => {
    const page = await sample.open(t);
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

  test('the header leaves room for the window’s buttons, but not in full screen nor in a browser', async (t) => {
    const page = await sample.open(t);
    const left = async () => (await page.locator('#toggleSide').boundingBox()).x;
    const bar = await page.locator('.bar').boundingBox();
    assert.deepEqual([bar.y, bar.height], [0, 52]);
    const { y, height } = await page.locator('#toggleSide').boundingBox();
    assert.equal(y + height / 2, 34);
    assert.ok((await left()) > 74);
    await page.evaluate(() => document.documentElement.classList.add('fullscreen'));
    assert.ok((await left()) < 40);
    await page.evaluate(() => document.documentElement.classList.remove('fullscreen', 'native'));
    assert.ok((await left()) < 40);
  });

  test('a dialog opens, lets nothing behind it have the keyboard, closes, and may be removed by the shell', async (t) => {
    const page = await sample.open(t, '#/about');
    await ready(page);
    const dialog = page.getByRole('dialog', { name: 'Updates' });
    const behind = () =>
      dialog.evaluate((element) => {
        const { activeElement } = document;
        return activeElement !== document.body && !element.contains(activeElement);
      });
    const backdrop = () => page.mouse.click(5, 5);
    const removal = () => page.evaluate(() => document.querySelectorAll('.modal-bg').forEach((x) => x.remove()));
    const escape = () => page.keyboard.press('Escape');
    for (const close of [escape, () => page.getByRole('button', { name: 'Done' }).click(), backdrop, removal]) {
      await page.evaluate(() => {
        window.openUpdate();
      });
      await dialog.waitFor();
      assert.equal(await page.evaluate(() => document.activeElement.textContent), 'Done');
      await dialog.getByText('comes with the application').click();
      for (const key of ['Tab', 'Shift+Tab', '/', 'Tab', 'Tab', 'Tab', 'Tab']) {
        await page.keyboard.press(key);
        assert.equal(await behind(), false, key);
      }
      await dialog.getByText('comes with the application').click();
      await close();
      await dialog.waitFor({ state: 'detached' });
    }
    await page.getByRole('link', { name: 'Ports', exact: true }).click();
    await page.getByRole('heading', { level: 1, name: 'Ports' }).waitFor();
  });

  test('without the shell the token is taken from the address, and without a token the page says so', async (t) => {
    const page = await sample.open(t, '', { inShell: false });
    await page.getByText('This page has no key').waitFor();
    await page.goto('about:blank');
    await page.goto(`${sample.dashboard.address}/#token=${TOKEN}`);
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

  test('text from projects is shown, never run', async (t) => {
    const hostile = await makeHome(t);
    const name = '<img src=x onerror="window.__run=1"><script>window.__run=1</script>';
    await writeTree(hostile, {
      'src/x/package.json': { name, version: name, scripts: { dev: 'echo "<script>window.__run=1</script>"' } },
    });
    const own = await startDashboard(t, hostile);
    const page = await sample.open(t, '#/', { address: own.address });
    await page.getByText(name).first().waitFor();
    await page.getByRole('button', { name: /^Start / }).click();
    await page.locator('a.cover').first().click();
    await page.getByRole('log').getByText('Ended normally').waitFor();
    assert.equal(await page.evaluate(() => window.__run), undefined);
  });

  test('no foreign page can frame it or reach it', async (t) => {
    const foreign = createServer((_request, response) => {
      response.writeHead(200, { 'Content-Type': 'text/html' });
      response.end(`<iframe src="${sample.dashboard.address}/"></iframe>`);
    }).listen(0, '127.0.0.1');
    await once(foreign, 'listening');
    t.after(() => foreign.close());
    const page = await sample.context.newPage();
    t.after(() => page.close());
    await page.goto(`http://127.0.0.1:${portOf(foreign)}/`);
    const reached = await page.evaluate(async (address) => {
      const simple = await fetch(`${address}/api/state`).then(
        () => 'read',
        () => 'refused',
      );
      const change = await fetch(`${address}/api/settings`, {
        method: 'POST',
        headers: { 'X-Harbrook': '1', 'Content-Type': 'application/json' },
        body: '{}',
      }).then(
        () => 'sent',
        () => 'refused',
      );
      return [simple, change];
    }, sample.dashboard.address);
    assert.deepEqual(reached, ['refused', 'refused']);
    const frame = page.frames().find((candidate) => candidate !== page.mainFrame());
    assert.equal(
      await frame
        .locator('#page')
        .count()
        .catch(() => 0),
      0,
    );
  });

  test('the environment of projects is read again when that is asked for', async (t) => {
    const page = await sample.open(t, '#/settings');
    await page.getByText('in the environment that /bin/sh makes').waitFor();
    await page.getByRole('button', { name: 'Read again' }).click();
    await page.getByText('The environment was read again.').waitFor();
  });

  test('the command stands beside Start, in the list and on the project’s page', async (t) => {
    const page = await sample.open(t, '#/');
    await page.locator('li.row', { hasText: 'failing' }).getByText('npm run dev', { exact: true }).waitFor();
    await go(page, `#/p/${encodeURIComponent(sample.shop)}`);
    await page.locator('.head').getByText('npm run dev', { exact: true }).waitFor();
  });
});
