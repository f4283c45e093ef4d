import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { chmod, mkdir, readdir, symlink, truncate, writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { test } from 'node:test';
import { MANIFESTS } from '../lib/projects/manifests.js';
import { ProjectReader } from '../lib/projects/project-reader.js';
import { isMember } from '../lib/projects/kinds/workspaces.js';
import { readProject } from '../lib/projects/read-project.js';
import { shownText } from '../lib/text.js';
import { makeHome, writeTree } from './support/machine.js';

async function folderWith(t, files) {
  const folder = join(await makeHome(t), 'thing');
  await mkdir(folder);
  await writeTree(folder, files);
  return folder;
}

async function read(t, files) {
  const folder = await folderWith(t, files);
  return readProject(folder, await readdir(folder));
}

/** @type {[string, Record<string, any>, Record<string, any>][]} */
const CASES = [
  [
    'the lock file names the package manager',
    { 'package.json': { scripts: { start: 'x' } }, 'pnpm-lock.yaml': '' },
    { name: 'thing', command: 'pnpm run start' },
  ],
  [
    'the packageManager field goes before the lock file',
    { 'package.json': { packageManager: 'yarn@4.1.0', scripts: { start: 'x' } }, 'pnpm-lock.yaml': '' },
    { command: 'yarn run start' },
  ],
  [
    'a package without a start script',
    { 'package.json': { name: 'lib', scripts: { test: 'x' } } },
    { name: 'lib', command: undefined },
  ],
  [
    'a broken package keeps its folder as a name',
    { 'package.json': '{ "name": ' },
    { name: 'thing', kind: 'Node.js', problem: 'package.json is not valid JSON.' },
  ],
  [
    'a package of another shape than expected',
    { 'package.json': '{"name":[1],"version":5,"scripts":"x","dependencies":null}' },
    { name: 'thing', version: undefined, command: undefined, problem: undefined },
  ],
  ['a package that is a list', { 'package.json': '[]' }, { problem: 'package.json is not valid JSON.' }],
  ['a byte order mark', { 'package.json': '\ufeff{"name": "marked"}' }, { name: 'marked', problem: undefined }],
  ['broken TOML', { 'Cargo.toml': '[package\nname = 1' }, { kind: 'Rust', problem: 'Cargo.toml is not valid TOML.' }],
  ['broken YAML', { 'compose.yaml': 'a: [\n' }, { kind: 'Compose', problem: 'compose.yaml is not valid YAML.' }],
  ['an empty compose file', { 'compose.yaml': '' }, { name: 'thing', problem: undefined }],
  [
    'a table of its own name',
    { 'pyproject.toml': '[build-system]\nname = "wrong"\n[project]\nname = "right"\n' },
    { name: 'right' },
  ],
  [
    'the parent’s version in Maven',
    {
      'pom.xml':
        '<project><parent><artifactId>p</artifactId><version>9</version></parent><artifactId>app</artifactId></project>',
    },
    { name: 'app', version: undefined },
  ],
  [
    'a file with a list of names that objects inherit',
    { 'package.json': '{"scripts": {}, "dependencies": {"constructor": "1"}}' },
    { command: undefined, kind: 'Node.js' },
  ],
  [
    'a command that would not be what is read',
    { Procfile: 'web: echo \u202ehcum oot si siht' },
    { command: undefined },
  ],
];

for (const [title, files, expected] of CASES) {
  test(title, async (t) => {
    const project = await read(t, files);
    for (const [key, value] of Object.entries(expected)) assert.equal(project[key], value, key);
  });
}

test('UTF-16 is read as well', async (t) => {
  const folder = await folderWith(t, {});
  await writeFile(join(folder, 'package.json'), Buffer.from('\ufeff{"name": "wide"}', 'utf16le'));
  assert.equal(readProject(folder, ['package.json']).name, 'wide');
});

test('a folder without a manifest is no project', async (t) => {
  assert.equal(await read(t, { 'notes.txt': 'x' }), null);
});

test('missing dependencies are told', async (t) => {
  const scripts = { dev: 'x' };
  const needs = async (files) => (await read(t, files)).needsInstall;
  assert.equal(await needs({ 'package.json': { scripts, dependencies: { a: '1' } } }), true);
  assert.equal(await needs({ 'package.json': { scripts, dependencies: { a: '1' } }, 'node_modules/a/b': '' }), false);
  assert.equal(await needs({ 'package.json': { scripts, dependencies: { a: '1' } }, '.pnp.cjs': '' }), false);
  assert.equal(await needs({ 'package.json': { scripts } }), false);
});

test('why a manifest says nothing is told as it is', async (t) => {
  const folder = await folderWith(t, {});
  const problemOf = (name) => readProject(folder, [name]).problem;
  execFileSync('mkfifo', [join(folder, 'package.json')]);
  assert.equal(problemOf('package.json'), 'package.json is not a file.');
  await mkdir(join(folder, 'Cargo.toml'));
  assert.equal(problemOf('Cargo.toml'), 'Cargo.toml is not a file.');
  await writeFile(join(folder, 'deno.json'), '{}');
  await truncate(join(folder, 'deno.json'), 50 * 1024 ** 3);
  assert.equal(problemOf('deno.json'), 'deno.json is too large to be read.');
  await symlink('compose.yaml', join(folder, 'compose.yaml'));
  assert.equal(readProject(folder, ['compose.yaml']).command, 'docker compose up');
  await symlink('/dev/zero', join(folder, 'composer.json'));
  assert.equal(problemOf('composer.json'), 'composer.json is not a file.');
});

test(
  'a manifest that may not be read is told so',
  { skip: process.getuid() === 0 && 'needs a user who may not read everything' },
  async (t) => {
    const folder = await folderWith(t, { 'package.json': '{}' });
    await chmod(join(folder, 'package.json'), 0);
    assert.equal(readProject(folder, ['package.json']).problem, 'You are not allowed to read package.json.');
  },
);

test('names are made fit to be shown', async (t) => {
  const nameOf = async (name) => (await read(t, { 'package.json': { name } })).name;
  assert.equal([...(await nameOf('x'.repeat(200_000)))].length, 200);
  assert.equal(await nameOf('shop\n\n\u202eevil\u2066\u200b\0'), 'shop evil');
  assert.equal(await nameOf('\u202e\n'), 'thing');
  assert.equal(await nameOf('<img src=x onerror=alert(1)>'), '<img src=x onerror=alert(1)>');
  assert.equal(await nameOf('café 👩‍💻 日本'), 'café 👩‍💻 日本');
  assert.equal(shownText(`${'😀'.repeat(300)}`).length, 2 * 199 + 1);
  const version = (await read(t, { 'package.json': { version: '1'.repeat(5000) } })).version;
  assert.equal(version.length, 60);
});

test('the members of a workspace are those that its patterns mean', () => {
  const cases = [
    [['packages/*'], 'packages/a', true],
    [['packages/*'], 'packages/a/b', false],
    [['packages/**'], 'packages/a/b', true],
    [['./apps/web'], 'apps/web', true],
    [['apps/*-web'], 'apps/my-web', true],
    [['apps/*-web'], 'apps/-we', false],
    [['**', '!**/test/**'], 'a/test/b', false],
    [['*'], 'a', true],
    [[5, null], 'a', false],
  ];
  for (const [patterns, path, expected] of cases)
    assert.equal(isMember(patterns, path), expected, `${patterns} ${path}`);
});

/** Texts that are hard on patterns and parsers, of some size. */
const HARD = {
  blanks: `[${' '.repeat(200_000)}`,
  lines: '\n'.repeat(300_000),
  brackets: '['.repeat(100_000),
  braces: '{"a":'.repeat(100_000),
  project: 'project('.repeat(60_000),
  spaces: `project(${' \t'.repeat(200_000)}`,
  xml: '<a>'.repeat(100_000),
  parents: '<project><parent>'.repeat(30_000),
  quotes: `x = "${'\\'.repeat(200_000)}`,
  colons: 'a:'.repeat(200_000),
  comments: '/*'.repeat(200_000),
  keys: Array.from({ length: 60_000 }, (_, index) => `k${index}: 1`).join('\n'),
  aliases: `a: &a [x]\n${Array.from({ length: 30 }, (_, index) => `b${index}: &b${index} [${'*a, '.repeat(9)}*a]`).join('\n')}`,
  dotted: `a${'.a'.repeat(100_000)} = 1`,
  version: `version: '${'1'.repeat(500_000)}`,
};

test('no text in any manifest takes long, or else it is given up', { timeout: 240_000 }, async (t) => {
  const reader = new ProjectReader({ patience: 500 });
  t.after(() => reader.close());
  const folder = await folderWith(t, {});
  const readers = new Map(MANIFESTS.map((manifest) => [manifest.reader, manifest]));
  for (const { name, suffix } of readers.values()) {
    const file = name ?? `x${suffix}`;
    for (const [title, text] of Object.entries(HARD)) {
      await writeFile(join(folder, file), text);
      const begin = performance.now();
      const project = await reader.read(folder, [file]);
      assert.ok(performance.now() - begin < 10_000, `${file} with ${title}`);
      assert.ok(project.kind && project.name, `${file} with ${title}`);
    }
  }
});

test('a reading that takes too long is given up, and the next ones go on', async (t) => {
  const folder = await folderWith(t, { 'a/package.json': { name: 'a' }, 'b/package.json': { name: 'b' } });
  const reader = new ProjectReader({ patience: 0 });
  t.after(() => reader.close());
  const late = await reader.read(join(folder, 'a'), ['package.json']);
  assert.deepEqual([late.kind, late.name], ['Node.js', 'a']);
  const patient = new ProjectReader();
  t.after(() => patient.close());
  const both = await Promise.all(['a', 'b'].map((name) => patient.read(join(folder, name), ['package.json'])));
  assert.deepEqual(
    both.map(({ name }) => name),
    ['a', 'b'],
  );
});

/** Numbers that look random and are the same each time. */
function randomNumbers(seed) {
  let state = seed;
  return (below) => {
    state = (state * 1_103_515_245 + 12_345) % 2_147_483_648;
    return Math.floor((state / 2_147_483_648) * below);
  };
}

const SEEDS = [
  '{"name": "x", "scripts": {"dev": "y"}, "workspaces": ["a/*"], "dependencies": {"vite": "1"}}',
  '[package]\nname = "x"\n[[bin]]\nname = "y"\n[project]\ndependencies = ["flask"]\n[tool.poetry.dependencies]\ndjango = "5"\n',
  'name: x\nservices:\n  web: {image: y}\npackages: [a, "!b"]\ntasks: {dev: 1}\n',
  '<project><artifactId>x</artifactId><build><plugins><plugin><artifactId>y</artifactId></plugin></plugins></build></project>',
  "project('x', version: '1')\nproject(x VERSION 1.0)\nweb: serve $PORT\nrun: all\n\techo\nmodule a/b/v2\n",
];
const PIECES = [
  '\0',
  '"',
  "'",
  '[',
  ']',
  '{',
  '}',
  '(',
  '<',
  '&a',
  '*a',
  '\n',
  '\r',
  '\t',
  ':',
  '=',
  '\u202e',
  '\ud800',
  '__proto__',
  '//',
  '/*',
  '<![CDATA[',
  '&#0;',
  '!!js',
  '%',
  '9e999',
];

/** A seed of which some places were changed, doubled, taken out or exchanged. */
function mutated(random) {
  let text = SEEDS[random(SEEDS.length)];
  for (let change = random(12); change >= 0; change -= 1) {
    const at = random(text.length + 1);
    const to = Math.min(text.length, at + random(20));
    const inside = [
      PIECES[random(PIECES.length)].repeat(1 + random(6)),
      '',
      text.slice(at, to).repeat(3),
      SEEDS[random(SEEDS.length)],
    ];
    text = text.slice(0, at) + inside[random(inside.length)] + text.slice(random(2) ? at : to);
  }
  return text;
}

test('whatever is in its manifests, a folder gives a project that can be shown', async (t) => {
  const folder = await folderWith(t, {});
  const seed = Number(process.env.HARBROOK_FUZZ_SEED ?? 18);
  const random = randomNumbers(seed);
  for (let round = 0; round < Number(process.env.HARBROOK_FUZZ_ROUNDS ?? 1500); round += 1) {
    const { name, suffix } = MANIFESTS[random(MANIFESTS.length)];
    const file = name ?? `x${suffix}`;
    const text = mutated(random);
    await writeFile(join(folder, file), text);
    const about = `seed ${seed}, round ${round}, ${file}: ${JSON.stringify(text)}`;
    const project = readProject(folder, [file]);
    assert.ok(project.kind && typeof project.kind === 'string', about);
    for (const key of ['name', 'version', 'command']) {
      assert.ok(
        project[key] === undefined ||
          (typeof project[key] === 'string' && shownText(project[key], 1000) === project[key]),
        `${key}, ${about}`,
      );
    }
    assert.equal({}.polluted ?? {}.name, undefined);
  }
});
