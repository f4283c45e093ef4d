import assert from 'node:assert/strict';
import { once } from 'node:events';
import { mkdir, rename, rm, symlink, writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { test } from 'node:test';
import { Finder } from '../lib/projects/finder.js';
import { makeHome, writeTree } from './support/machine.js';

const startable = (name) => ({ name, scripts: { dev: 'x' } });

async function find(t, files, roots = ['']) {
  const home = await makeHome(t);
  await writeTree(home, files);
  const finder = new Finder();
  t.after(() => finder.close());
  finder.setFolders(roots.map((root) => join(home, root)));
  if (!finder.ready) await once(finder, 'ready');
  return { finder, home };
}

const names = (finder) =>
  finder
    .projects()
    .map(({ name }) => name)
    .sort();

/** Fulfilled once the finder's names are these; they change only by its "change" event. */
async function untilNames(finder, expected) {
  while (names(finder).join() !== expected.join()) await once(finder, 'change', { signal: AbortSignal.timeout(8000) });
}

test('projects are found at any depth up to four', async (t) => {
  const { finder } = await find(t, {
    'a/package.json': { name: 'one' },
    'x/b/go.mod': 'module two',
    'x/y/z/c/go.mod': 'module four',
    'x/y/z/w/d/go.mod': 'module five',
  });
  assert.deepEqual(names(finder), ['four', 'one', 'two']);
});

test('vendored, built and hidden folders are left alone', async (t) => {
  const files = {};
  for (const folder of ['node_modules', 'vendor', 'target', 'build', '.cache', 'third_party', 'venv', 'build-debug']) {
    files[`${folder}/p/package.json`] = startable(folder);
    files[`own/${folder}/p/package.json`] = startable(`own ${folder}`);
  }
  const { finder } = await find(t, { ...files, 'own/package.json': { name: 'own' } });
  assert.deepEqual(names(finder), ['own']);
});

test('inside a project only what can be started counts', async (t) => {
  const { finder } = await find(t, {
    'mono/package.json': { name: 'mono' },
    'mono/packages/web/package.json': startable('web'),
    'mono/packages/lib/package.json': { name: 'lib' },
    'mono/packages/deep/er/package.json': startable('too deep'),
  });
  assert.deepEqual(names(finder), ['mono', 'web']);
});

test('a chosen folder that is a project itself is looked through in full', async (t) => {
  const { finder } = await find(t, { 'package.json': { name: 'root' }, 'a/b/c/package.json': { name: 'below' } });
  assert.deepEqual(names(finder), ['below', 'root']);
});

test('a checkout without a manifest is looked into, but not deep', async (t) => {
  const { finder } = await find(t, {
    'repo/.git/HEAD': '',
    'repo/api/go.mod': 'module api',
    'repo/tools/x/go.mod': 'module x',
    'repo/tools/y/z/go.mod': 'module z',
  });
  assert.deepEqual(names(finder), ['api', 'x']);
});

test('a circle of symbolic links is no trap', async (t) => {
  const home = await makeHome(t);
  await writeTree(home, { 'a/go.mod': 'module a' });
  await symlink(home, join(home, 'loop'));
  const finder = new Finder();
  t.after(() => finder.close());
  finder.setFolders([home]);
  await once(finder, 'ready');
  assert.deepEqual(names(finder), ['a']);
});

test('a chosen folder may be a symbolic link; the real path is known beside it', async (t) => {
  const home = await makeHome(t);
  await writeTree(home, { 'real/a/go.mod': 'module a' });
  await symlink(join(home, 'real'), join(home, 'link'));
  const finder = new Finder();
  t.after(() => finder.close());
  finder.setFolders([join(home, 'link')]);
  await once(finder, 'ready');
  assert.equal(finder.projects()[0].path, join(home, 'link/a'));
  assert.equal(finder.projects()[0].realPath, join(home, 'real/a'));
});

test('without any folder the finder is ready at once', async (t) => {
  const { finder } = await find(t, {}, []);
  assert.deepEqual(names(finder), []);
});

test('new, changed, moved and removed projects show by themselves', async (t) => {
  const { finder, home } = await find(t, { 'a/package.json': { name: 'a' } });
  await writeTree(home, { 'group/b/package.json': { name: 'b' } });
  await untilNames(finder, ['a', 'b']);
  await writeFile(join(home, 'a/package.json'), JSON.stringify({ name: 'renamed' }));
  await untilNames(finder, ['b', 'renamed']);
  await rename(join(home, 'group/b'), join(home, 'group/c'));
  await untilNames(finder, ['b', 'renamed']);
  await rm(join(home, 'a'), { recursive: true });
  await untilNames(finder, ['b']);
  while (!finder.project(join(home, 'group/c'))) await once(finder, 'change', { signal: AbortSignal.timeout(8000) });
  assert.equal(finder.project(join(home, 'group/b')), undefined);
});

test('a manifest that goes away ends the project and opens its folder', async (t) => {
  const { finder, home } = await find(t, { 'a/package.json': { name: 'a' }, 'a/b/c/go.mod': 'module c' });
  assert.deepEqual(names(finder), ['a']);
  await rm(join(home, 'a/package.json'));
  await untilNames(finder, ['c']);
});

test('a chosen folder that is not there yet is waited for', async (t) => {
  const { finder, home } = await find(t, {}, ['later']);
  assert.equal(finder.folderExists(join(home, 'later')), false);
  await mkdir(join(home, 'later'));
  await writeTree(home, { 'later/a/go.mod': 'module a' });
  await untilNames(finder, ['a']);
  assert.equal(finder.folderExists(join(home, 'later')), true);
  await rm(join(home, 'later'), { recursive: true });
  await untilNames(finder, []);
});

test('folders can be chosen and left again, one inside the other too', async (t) => {
  const { finder, home } = await find(t, { 'x/a/go.mod': 'module a', 'y/b/go.mod': 'module b' }, ['x']);
  assert.deepEqual(names(finder), ['a']);
  finder.setFolders([home, join(home, 'y')]);
  await untilNames(finder, ['a', 'b']);
  finder.setFolders([home]);
  await untilNames(finder, ['a', 'b']);
  finder.setFolders([join(home, 'y')]);
  await untilNames(finder, ['b']);
  finder.setFolders([]);
  assert.deepEqual(names(finder), []);
});
