import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { once } from 'node:events';
import { mkdir, rename, rm, symlink, truncate, writeFile } from 'node:fs/promises';
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

test('a new package of a workspace shows by itself, in a new folder and in an old one', async (t) => {
  const { finder, home } = await find(t, {
    'mono/package.json': { name: 'mono' },
    'mono/packages/web/package.json': startable('web'),
  });
  assert.deepEqual(names(finder), ['mono', 'web']);
  await mkdir(join(home, 'mono/packages/api'));
  await writeTree(home, { 'mono/packages/api/package.json': startable('api') });
  await untilNames(finder, ['api', 'mono', 'web']);
  await mkdir(join(home, 'mono/apps/shop'), { recursive: true });
  // Long after its folder was made.
  await new Promise((resolve) => setTimeout(resolve, 2500));
  await writeTree(home, { 'mono/apps/shop/package.json': startable('shop') });
  await untilNames(finder, ['api', 'mono', 'shop', 'web']);
});

test('what starts the members follows the lock file at the root', async (t) => {
  const { finder, home } = await find(t, {
    'mono/package.json': { name: 'mono', workspaces: ['packages/*'] },
    'mono/packages/web/package.json': startable('web'),
  });
  const command = () => finder.project(join(home, 'mono/packages/web')).command;
  assert.equal(command(), 'npm run dev');
  await writeFile(join(home, 'mono/yarn.lock'), '');
  while (command() !== 'yarn run dev') await once(finder, 'change', { signal: AbortSignal.timeout(8000) });
});

test('a chosen folder with more than can be looked through is cut, nearest first, and costs the others nothing', async (t) => {
  const home = await makeHome(t);
  const files = { 'big/near/go.mod': 'module near', 'small/a/b/c/go.mod': 'module small' };
  for (let index = 0; index < 60; index += 1) files[`big/data/part${index}/more/x.txt`] = '';
  files['big/data/part1/deep/go.mod'] = 'module deep';
  await writeTree(home, files);
  const finder = new Finder({ mostFolders: 50 });
  t.after(() => finder.close());
  const [big, small] = [join(home, 'big'), join(home, 'small')];
  finder.setFolders([big, small]);
  await once(finder, 'ready');
  assert.deepEqual(names(finder), ['near', 'small']);
  assert.deepEqual([finder.folderIsCut(big), finder.folderIsCut(small)], [true, false]);
  await rm(join(big, 'data'), { recursive: true });
  while (finder.folderIsCut(big)) await once(finder, 'change', { signal: AbortSignal.timeout(8000) });
  await writeTree(home, { 'big/new/go.mod': 'module new' });
  await untilNames(finder, ['near', 'new', 'small']);
});

test('a chosen folder whose parents are missing too is noticed when it comes', async (t) => {
  const { finder, home } = await find(t, {}, ['disk/user/projects']);
  const root = join(home, 'disk/user/projects');
  assert.equal(finder.folderExists(root), false);
  for (const folder of ['disk', 'disk/user', 'disk/user/projects']) {
    await mkdir(join(home, folder));
    await new Promise((resolve) => setTimeout(resolve, 300));
  }
  await writeTree(home, { 'disk/user/projects/a/go.mod': 'module a' });
  await untilNames(finder, ['a']);
  await rm(join(home, 'disk'), { recursive: true });
  await untilNames(finder, []);
  await writeTree(home, { 'disk/user/projects/b/go.mod': 'module b' });
  await untilNames(finder, ['b']);
});

test('a page or a makefile inside a project is no project, and none hides what is below it', async (t) => {
  const { finder } = await find(t, {
    'web/package.json': { name: 'web' },
    'web/public/index.html': '',
    'web/docs/Makefile': 'run:\n',
    'site/index.html': '',
    'site/blog/index.html': '',
    'work/Makefile': 'run:\n',
    'work/team/shop/go.mod': 'module shop',
  });
  assert.deepEqual(names(finder), ['shop', 'site', 'web', 'work']);
});

test('folders made to do harm do none', async (t) => {
  const home = await makeHome(t);
  await writeTree(home, { 'good/package.json': { name: 'good' } });
  // Loops of links, of files and of folders.
  await mkdir(join(home, 'loop'));
  await symlink('.', join(home, 'loop/self'));
  await symlink('../loop', join(home, 'loop/other'));
  await symlink('package.json', join(home, 'loop/package.json'));
  await symlink('/proc/self/root', join(home, 'everything'));
  // Deep nesting, almost as long as a path may be.
  execFileSync(
    '/bin/sh',
    ['-c', 'i=0; while [ $i -lt 15 ]; do mkdir "$0" && cd "$0" || exit 0; i=$((i + 1)); done', 'd'.repeat(200)],
    { cwd: home },
  );
  // Manifests that never end, or are nothing to be read.
  await mkdir(join(home, 'pipe'));
  execFileSync('mkfifo', [join(home, 'pipe/package.json'), join(home, 'pipe/pyproject.toml')]);
  await mkdir(join(home, 'sparse'));
  await writeFile(join(home, 'sparse/package.json'), '{');
  await truncate(join(home, 'sparse/package.json'), 100 * 1024 ** 3);
  await mkdir(join(home, 'device'));
  await symlink('/dev/zero', join(home, 'device/go.mod'));
  await writeTree(home, {
    'slow/pyproject.toml': `[${' '.repeat(500_000)}`,
    'slow/CMakeLists.txt': '\n'.repeat(500_000),
  });
  // Names that are something else where they are shown.
  const markup = '<img src=x onerror=alert(1)>\n\u202e';
  await mkdir(join(home, markup));
  await writeFile(join(home, markup, 'index.html'), '');

  const finder = new Finder();
  t.after(() => finder.close());
  let longest = 0;
  let before = performance.now();
  const ticks = setInterval(() => {
    longest = Math.max(longest, performance.now() - before - 10);
    before = performance.now();
  }, 10);
  t.after(() => clearInterval(ticks));
  finder.setFolders([home]);
  await once(finder, 'ready');
  assert.deepEqual(names(finder), ['<img src=x onerror=alert(1)>', 'device', 'good', 'loop', 'pipe', 'slow', 'sparse']);
  const problemOf = (name) => finder.project(join(home, name)).problem;
  assert.equal(problemOf('pipe'), 'package.json is not a file.');
  assert.equal(problemOf('sparse'), 'package.json is too large to be read.');
  assert.equal(problemOf('device'), 'go.mod is not a file.');
  assert.equal(problemOf('loop'), 'package.json cannot be read.');
  assert.ok(longest < 1000, `requests would have waited for ${longest.toFixed(0)} ms`);
});
