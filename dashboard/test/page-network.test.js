import assert from 'node:assert/strict';
import { join } from 'node:path';
import { test } from 'node:test';
import { startDashboard, makeHome, writeTree } from './support/machine.js';
import { describePage, ready } from './support/page.js';
import { proxyTo } from './support/proxy.js';
import { eventually } from './support/waiting.js';

const PRINTING = 'for i in 1 2 3; do echo "line $i"; done; exec sleep 60';

await describePage('the page on a bad connection', (sample) => {
  /** A page that reaches a server of its own through a proxy. */
  async function arrange(t, treat) {
    const home = await makeHome(t);
    await writeTree(home, { 'projects/shop/package.json': { name: 'shop', version: '1', scripts: { dev: 'x' } } });
    const dashboard = await startDashboard(t, home);
    await dashboard.until((overview) => overview.ready && overview.services.ready);
    const path = join(home, 'projects/shop');
    await dashboard.post('api/project/settings', { path, command: PRINTING });
    const proxy = await proxyTo(t, dashboard.port);
    if (treat) proxy.treat = treat;
    return { home, dashboard, proxy, path, open: (hash) => sample.open(t, hash, { address: proxy.address }) };
  }
  const setVersion = (home, version) =>
    writeTree(home, { 'projects/shop/package.json': { name: 'shop', version, scripts: { dev: 'x' } } });
  const version = (page, text) => page.locator('.version', { hasText: text });
  const only = (path, treatment) => (asked) => (asked === path ? treatment : {});

  test('answers that are lost, broken or cut off are asked for again, less and less often', async (t) => {
    for (const treatment of [{ drop: true }, { cut: true }]) {
      const { proxy, open } = await arrange(t, only('/api/overview', treatment));
      const page = await open();
      await page.getByText('The server does not answer').waitFor();
      const from = Date.now();
      const times = () => proxy.asked.filter((path) => path === '/api/overview').length;
      await eventually(() => times() >= 3, { what: 'three attempts' });
      assert.ok(Date.now() - from > 1000, 'the attempts follow one another at once');
      proxy.treat = () => ({});
      await page.getByRole('link', { name: 'shop' }).waitFor();
    }
  });

  test('an answer that never comes is given up, and asked for again', async (t) => {
    const { proxy, open } = await arrange(t, only('/api/overview', { hang: true }));
    const page = await open();
    await eventually(() => proxy.asked.includes('/api/overview'));
    proxy.treat = () => ({});
    await page.getByRole('link', { name: 'shop' }).waitFor();
  });

  test('an old answer that comes once more changes nothing, and the new one is asked for', async (t) => {
    const { home, proxy, open, dashboard } = await arrange(t);
    const page = await open();
    await ready(page);
    await setVersion(home, '2');
    await version(page, '2').waitFor();
    let old = 3;
    proxy.treat = (path) => (path === '/api/overview' && old-- > 0 ? { old: true } : {});
    await setVersion(home, '3');
    await dashboard.until(({ projects }) => projects[0].version === '3');
    await version(page, '3').waitFor();
    assert.ok(old <= 0);
    proxy.treat = only('/api/overview', { old: true });
    await setVersion(home, '4');
    await dashboard.until(({ projects }) => projects[0].version === '4');
    const before = proxy.asked.length;
    await eventually(() => proxy.asked.length > before + 1, { what: 'more attempts' });
    assert.equal(await version(page, '3').count(), 1);
  });

  test('events that come twice ask for nothing, and those that stay away are noticed', async (t) => {
    const { home, proxy, open } = await arrange(t, only('/api/events', { twice: true }));
    const page = await open();
    await ready(page);
    await setVersion(home, '2');
    await version(page, '2').waitFor();
    proxy.treat = only('/api/events', { mute: true });
    proxy.cutAll();
    await page.getByText('Reconnecting…').waitFor();
    await eventually(() => proxy.asked.at(-1) === '/api/events', { what: 'the next connection' });
    proxy.treat = () => ({});
    await setVersion(home, '3');
    await version(page, '3').waitFor({ timeout: 60_000 });
    await page.getByText('Reconnecting…').waitFor({ state: 'detached' });
  });

  test('a start that is asked for twice starts once, and is no error', async (t) => {
    const { proxy, open, dashboard } = await arrange(t, only('/api/project/start', { repeat: true }));
    const page = await open();
    await page.getByRole('button', { name: 'Start shop' }).click();
    await page.getByRole('button', { name: 'Stop shop' }).waitFor();
    assert.equal(await page.getByRole('alert').innerText(), '');
    assert.equal((await dashboard.json('api/state')).stats.running, 1);
    proxy.treat = only('/api/project/stop', { drop: true });
    await page.getByRole('button', { name: 'Stop shop' }).click();
    await page.getByRole('alert').getByText('does not answer').waitFor();
    proxy.treat = only('/api/project/stop', { repeat: true });
    await page.getByRole('button', { name: 'Stop shop' }).click();
    await page.getByRole('button', { name: 'Start shop' }).waitFor();
  });

  test('output that is cut off is shown again, whole and once', async (t) => {
    const { proxy, open, path, dashboard } = await arrange(t);
    await dashboard.post('api/project/start', { path });
    const page = await open(`#/p/${encodeURIComponent(path)}`);
    const log = page.getByRole('log');
    await log.getByText('line 3').waitFor();
    const asked = () => proxy.asked.filter((address) => address.startsWith('/api/project/log')).length;
    const before = asked();
    proxy.cutAll();
    await eventually(() => asked() > before, { what: 'the output to be asked for again' });
    await dashboard.post('api/project/stop', { path });
    await log.getByText('Stopped.').waitFor();
    assert.equal((await log.innerText()).match(/line 2/g).length, 1);
  });
});
