import assert from 'node:assert/strict';
import { mkdir, readdir, readFile, rm, stat, writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { test } from 'node:test';
import { Settings } from '../lib/settings.js';
import { makeHome } from './support/machine.js';

async function makeSettings(t, text) {
  const home = await makeHome(t);
  const dataDirectory = join(home, '.harbrook');
  const file = join(dataDirectory, 'settings.json');
  if (text !== undefined) {
    await mkdir(dataDirectory);
    await writeFile(file, text);
  }
  return { home, file, dataDirectory, open: () => new Settings({ home, dataDirectory }) };
}

test('without a file there are the usual folders and no choices', async (t) => {
  const { home, open, dataDirectory } = await makeSettings(t);
  const settings = open();
  assert.deepEqual(
    settings.folders,
    ['projects', 'src', 'code', 'dev'].map((name) => join(home, name)),
  );
  assert.equal(settings.foldersAreDefault, true);
  assert.deepEqual(settings.project('/x'), {});
  await assert.rejects(stat(dataDirectory), 'reading makes no directory');
});

test('changes outlive the program', async (t) => {
  const { open, file, dataDirectory } = await makeSettings(t);
  const settings = open();
  await settings.setFolders(['/a/', '/a', '/b/../c']);
  await settings.setProject('/a/x', { command: '  make run ', menubar: false });
  await settings.setProject('__proto__', { command: 'x' });
  const again = open();
  assert.deepEqual(again.folders, ['/a', '/c']);
  assert.deepEqual(again.project('/a/x'), { command: 'make run', menubar: false });
  assert.deepEqual(again.project('toString'), {});
  assert.equal((await stat(file)).mode & 0o777, 0o600);
  assert.deepEqual(await readdir(dataDirectory), ['settings.json']);
});

test('null takes a choice back, and what is not named stays', async (t) => {
  const { open, file } = await makeSettings(t);
  const settings = open();
  await settings.setProject('/x', { command: 'run', menubar: true });
  await settings.setProject('/x', { command: null });
  assert.deepEqual(settings.project('/x'), { menubar: true });
  await settings.setProject('/x', { menubar: null });
  await settings.setFolders(['/a']);
  await settings.setFolders(null);
  assert.deepEqual(JSON.parse(await readFile(file, 'utf8')), { folders: null, projects: {} });
});

test('changes made at once are all kept', async (t) => {
  const { open } = await makeSettings(t);
  const settings = open();
  await Promise.all(
    Array.from({ length: 20 }, (_, index) => settings.setProject(`/p${index}`, { command: `run ${index}` })),
  );
  const again = open();
  for (let index = 0; index < 20; index += 1) assert.equal(again.project(`/p${index}`).command, `run ${index}`);
});

test('a crash in the middle of a write leaves the old settings whole', async (t) => {
  const { open, file, dataDirectory } = await makeSettings(t);
  await open().setFolders(['/a']);
  // What a crash leaves: a temporary file that was never put in place.
  await writeFile(join(dataDirectory, '.settings.json.1.tmp'), '{"folders": ["/b"');
  assert.deepEqual(open().folders, ['/a']);
  assert.deepEqual(JSON.parse(await readFile(file, 'utf8')).folders, ['/a']);
});

test('a damaged file is kept aside and the defaults hold', async (t) => {
  for (const text of ['{"folders": ["/a"', '', '[]', 'null']) {
    const { open, file } = await makeSettings(t, text);
    assert.equal(open().foldersAreDefault, true);
    assert.equal(await readFile(`${file}.damaged`, 'utf8'), text);
  }
});

test('what a file should not hold is left out', async (t) => {
  const { open } = await makeSettings(
    t,
    JSON.stringify({
      folders: ['relative'],
      projects: { '/x': { command: 5, menubar: 'yes' }, '/y': 7, '/z': { command: 'go', other: 1 } },
      more: true,
    }),
  );
  const settings = open();
  assert.equal(settings.foldersAreDefault, true);
  assert.deepEqual(settings.project('/x'), {});
  assert.deepEqual(settings.project('/z'), { command: 'go' });
});

test('values that make no sense are refused and change nothing', async (t) => {
  const { open } = await makeSettings(t);
  const settings = open();
  for (const folders of ['/a', [1], ['a'], ['/a\0b'], Array(51).fill('/a'), [`/${'a'.repeat(5000)}`], {}]) {
    assert.throws(() => settings.setFolders(folders), { reason: 'invalid' });
  }
  for (const patch of [
    { command: 5 },
    { command: 'a\nb' },
    { command: 'x'.repeat(2001) },
    { menubar: 'yes' },
    { menubar: 1 },
  ]) {
    assert.throws(() => settings.setProject('/x', patch), { reason: 'invalid' });
  }
  assert.deepEqual(settings.project('/x'), {});
  assert.equal(settings.foldersAreDefault, true);
});

test('a change that cannot be written is refused, undone, and hinders no later one', async (t) => {
  const { open, dataDirectory } = await makeSettings(t);
  await writeFile(dataDirectory, 'a file where the directory should be');
  const settings = open();
  await assert.rejects(settings.setFolders(['/a']), { reason: 'failed' });
  assert.equal(settings.foldersAreDefault, true);
  await rm(dataDirectory);
  await settings.setFolders(['/b']);
  assert.deepEqual(settings.folders, ['/b']);
});

test('settings that cannot be read though they may be whole are never replaced', async (t) => {
  const { open, file, dataDirectory } = await makeSettings(t, '');
  await rm(file);
  // What no permission gives to everybody but root: a file that is there and cannot be read.
  await mkdir(file);
  const settings = open();
  assert.match(settings.problem, /cannot be read/);
  await assert.rejects(settings.setFolders(['/a']), {
    reason: 'failed',
    message: /cannot be read.*Nothing is changed/,
  });
  assert.deepEqual(await readdir(dataDirectory), ['settings.json']);
  await rm(file, { recursive: true });
  await writeFile(file, '{"folders": ["/kept"], "projects": {"/x": {"command": "run"}}}');
  await settings.addFolder('/b', () => true);
  assert.deepEqual(
    [settings.problem, settings.folders, settings.project('/x').command],
    [null, ['/kept', '/b'], 'run'],
  );
});

test('a folder is added or removed without those that are missing at the moment', async (t) => {
  const { home, open } = await makeSettings(t, '{"folders": ["/here", "/unplugged"]}');
  const settings = open();
  const isThere = (folder) => folder !== '/unplugged' && folder !== join(home, 'src');
  await settings.addFolder('/new/', isThere);
  assert.deepEqual(settings.folders, ['/here', '/unplugged', '/new']);
  await settings.removeFolder('/here', isThere);
  assert.deepEqual(settings.folders, ['/unplugged', '/new']);
  assert.throws(() => settings.addFolder('relative', isThere), { reason: 'invalid' });
  // Of the usual ones nobody has chosen those that are not there.
  await settings.setFolders(null);
  await settings.addFolder('/new', isThere);
  assert.deepEqual(settings.folders, [...['projects', 'code', 'dev'].map((name) => join(home, name)), '/new']);
});
