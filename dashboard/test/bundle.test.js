import assert from 'node:assert/strict';
import { existsSync } from 'node:fs';
import { mkdtemp, readdir, readFile, rm } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { basename, join, relative } from 'node:path';
import { test } from 'node:test';
import { bundle, dashboard, SIDES } from '../tools/bundle.js';
import { vendored } from '../tools/vendor.js';
import { findBrowser, openBrowser } from './support/browser.js';
import { makeHome, startDashboard, writeTree } from './support/machine.js';
import { openPage, ready } from './support/page.js';

async function makeBundle(t) {
  const folder = await mkdtemp(join(tmpdir(), 'harbrook-bundle-'));
  t.after(() => rm(folder, { recursive: true }));
  bundle(join(folder, 'app'));
  return join(folder, 'app');
}

async function filesIn(folder) {
  if (!existsSync(folder)) return [];
  const entries = await readdir(folder, { recursive: true, withFileTypes: true });
  return entries.filter((entry) => entry.isFile()).map((entry) => relative(folder, join(entry.path, entry.name)));
}

test('the copies of packages are what the lock file names, and all that the bundles take', async () => {
  for (const [folder, content] of vendored()) {
    assert.deepEqual((await filesIn(folder)).sort(), [...content.keys()].sort());
    for (const [path, bytes] of content) assert.ok(bytes.equals(await readFile(join(folder, path))), path);
  }
});

test('the lock file says of every package what its bytes must be, and not where they come from', async () => {
  const { packages } = JSON.parse(await readFile(new URL('../package-lock.json', import.meta.url), 'utf8'));
  for (const [name, entry] of Object.entries(packages)) {
    if (name !== '') assert.match(entry.integrity, /^sha512-/, name);
    assert.equal(entry.resolved, undefined, name);
  }
});

test('the bundle is a file for the server, one for its worker and one for the page, with their maps and licences', async (t) => {
  const app = await makeBundle(t);
  const workers = (await filesIn(join(dashboard, 'lib'))).filter((file) => file.endsWith('-worker.js'));
  const scripts = ['server.js', ...workers.map((file) => basename(file))];
  assert.deepEqual(
    (await filesIn(app)).sort(),
    [
      ...scripts.flatMap((file) => [file, `${file}.map`]),
      ...[
        'package.json',
        'page/icon.svg',
        'page/index.html',
        'page/page.css.map',
        'page/page.js.map',
        'third-party.txt',
      ],
    ].sort(),
  );
  for (const [script, map] of [
    ['server.js', 'server.js.map'],
    ['page/index.html', 'page/page.js.map'],
  ]) {
    assert.ok((await readFile(join(app, script), 'utf8')).includes('sourceMappingURL='));
    assert.ok(JSON.parse(await readFile(join(app, map), 'utf8')).sources.length > 10);
  }
  const licences = await readFile(join(app, 'third-party.txt'), 'utf8');
  for (const folder of Object.values(SIDES)) {
    for (const name of new Set(
      (await filesIn(folder)).filter((file) => file.includes('/')).map((file) => file.split('/')[0]),
    ))
      assert.ok(licences.includes(`${name} `), name);
  }
});

const browser = await findBrowser();
test('the bundled page needs one request, and then only the API', { skip: browser.missing ?? false }, async (t) => {
  const home = await makeHome(t);
  await writeTree(home, { 'projects/shop/go.mod': 'module shop' });
  const served = await startDashboard(t, home, {}, { script: join(await makeBundle(t), 'server.js') });
  const context = await openBrowser(t, browser);
  const asked = [];
  context.on('request', (request) => asked.push(new URL(request.url()).pathname));
  const page = await openPage(t, context, `${served.address}/`);
  await page.getByRole('link', { name: 'shop' }).waitFor();
  await ready(page);
  // The icon is for a browser's tab.
  assert.deepEqual(
    asked.filter((path) => !path.startsWith('/api/') && path !== '/icon.svg'),
    ['/'],
  );
  for (const map of ['/page.js.map', '/page.css.map']) assert.equal((await served.get(map)).status, 200);
});
