import assert from 'node:assert/strict';
import { mkdir, readFile, rm, stat, writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { test } from 'node:test';
import { setTimeout as wait } from 'node:timers/promises';
import { Dashboard } from '../lib/dashboard.js';
import { Remembered } from '../lib/projects/remembered.js';
import { makeHome, startDashboard, writeTree } from './support/machine.js';

const SHOP = { path: '/home/me/src/shop', name: 'shop', kind: 'Go', manifests: ['go.mod'] };

test('the projects of the last time are there at the first request, and mended by the scan', async (t) => {
  const home = await makeHome(t);
  await writeTree(home, { 'src/kept/go.mod': 'module kept', 'src/removed/go.mod': 'module removed' });
  const first = await startDashboard(t, home);
  await first.until(({ ready }) => ready);
  first.child.kill('SIGTERM');
  await first.ended;
  await rm(join(home, 'src/removed'), { recursive: true });
  await writeTree(home, { 'src/added/go.mod': 'module added' });

  // Not started, so nothing has been looked through: this is what the first request is answered with.
  const dashboard = new Dashboard({ directory: home, dataDirectory: join(home, '.harbrook'), home });
  const names = () => JSON.parse(dashboard.overview.toString()).projects.map(({ name }) => name);
  const scanned = new Promise((resolve) => dashboard.finder.once('ready', resolve));
  dashboard.start();
  assert.deepEqual(names(), ['kept', 'removed']);
  assert.equal(JSON.parse(dashboard.overview.toString()).ready, false);
  await scanned;
  assert.deepEqual(names(), ['added', 'kept']);
  await dashboard.close();
});

test('while there is something to show, the machine is looked at only once the page has it', async (t) => {
  const home = await makeHome(t);
  await writeTree(home, { 'src/shop/go.mod': 'module shop' });
  const dataDirectory = join(home, '.harbrook');
  const dashboard = () => new Dashboard({ directory: home, dataDirectory, home });
  const scanned = (one) => new Promise((resolve) => one.finder.once('ready', () => resolve('scanned')));
  // Without anything from before, nobody needs to ask.
  const first = dashboard();
  const found = scanned(first);
  first.start();
  await found;
  await first.close();

  const second = dashboard();
  const ready = scanned(second);
  let looked = false;
  const { setFolders } = second.finder;
  second.finder.setFolders = (folders) => {
    looked = true;
    setFolders.call(second.finder, folders);
  };
  second.start();
  await wait(100);
  assert.equal(looked, false);
  assert.ok(second.overview.includes('shop'));
  assert.equal(await ready, 'scanned');
  await second.close();
});

test('what was chosen meanwhile, or is damaged, is not remembered', async (t) => {
  const file = join(await makeHome(t), 'projects.json');
  const remembered = new Remembered(file);
  await remembered.write(['/a'], [SHOP]);
  assert.deepEqual(remembered.read(['/a']), [SHOP]);
  assert.deepEqual(remembered.read(['/a', '/b']), []);
  assert.equal((await stat(file)).mode & 0o777, 0o600);
  for (const text of ['', '{', 'null', '{"folders":["/a"]}', '{"folders":["/a"],"projects":[null,5,{"path":1}]}']) {
    await writeFile(file, text);
    assert.deepEqual(remembered.read(['/a']), [], text);
  }
  await rm(file);
  await mkdir(file);
  assert.deepEqual(remembered.read(['/a']), []);
});

test('what has not changed is not written again', async (t) => {
  const file = join(await makeHome(t), 'projects.json');
  const remembered = new Remembered(file);
  await remembered.write(['/a'], [SHOP]);
  await rm(file);
  await remembered.write(['/a'], [SHOP]);
  await assert.rejects(readFile(file));
  await remembered.write(['/a'], []);
  assert.deepEqual(JSON.parse(await readFile(file, 'utf8')), { folders: ['/a'], projects: [] });
});
