import assert from 'node:assert/strict';
import { test } from 'node:test';
import { readProject } from '../lib/projects/read-project.js';
import { tomlString } from '../lib/projects/manifests.js';
import { makeHome, writeTree } from './support/machine.js';
import { readdir } from 'node:fs/promises';
import { join } from 'node:path';
import { execFileSync } from 'node:child_process';

async function read(t, files) {
  const home = await makeHome(t);
  const folder = join(home, 'thing');
  await writeTree(folder, files);
  return readProject(folder, new Set(await readdir(folder)));
}

const CASES = [
  [
    'a package with a dev script',
    { 'package.json': { name: 'shop', version: '1.2.3', scripts: { start: 'x', dev: 'y' } } },
    { name: 'shop', version: '1.2.3', kind: 'Node.js', command: 'npm run dev' },
  ],
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
    'a framework decides the kind',
    { 'package.json': { devDependencies: { vite: '5', typescript: '5' } } },
    { kind: 'Vite' },
  ],
  [
    'a Rust program',
    { 'Cargo.toml': '[package]\nname = "ledger" # its name\nversion = \'0.9.0\'\n', 'src/main.rs': '' },
    { name: 'ledger', version: '0.9.0', kind: 'Rust', command: 'cargo run' },
  ],
  [
    'a Rust library has nothing to run',
    { 'Cargo.toml': '[package]\nname = "lib"\n', 'src/lib.rs': '' },
    { name: 'lib', command: undefined },
  ],
  [
    'a Go program of a later major version',
    { 'go.mod': 'module example.org/team/mailer/v2\n\ngo 1.22\n', 'main.go': '' },
    { name: 'mailer', kind: 'Go', command: 'go run .' },
  ],
  [
    'a Python project',
    { 'pyproject.toml': '[build-system]\nname = "wrong"\n[project]\nname = "notebook"\nversion = "3.1"\n' },
    { name: 'notebook', version: '3.1', kind: 'Python' },
  ],
  [
    'a Poetry project',
    { 'pyproject.toml': '[tool.poetry]\nname = "poems"\nversion = "2.0"\n' },
    { name: 'poems', version: '2.0' },
  ],
  [
    'a Django project',
    { 'manage.py': '', 'requirements.txt': 'django' },
    { kind: 'Django', name: 'thing', command: 'python3 manage.py runserver' },
  ],
  [
    'a CMake project',
    { 'CMakeLists.txt': 'cmake_minimum_required(VERSION 3.20)\nproject(tracer\n  VERSION 1.2.3\n  LANGUAGES CXX)\n' },
    { kind: 'CMake', name: 'tracer', version: '1.2.3' },
  ],
  [
    'a Rails application',
    { Gemfile: '', 'config.ru': '', 'app/a': '', 'bin/rails': '' },
    { kind: 'Rails', command: 'bin/rails server' },
  ],
  [
    'a Laravel application',
    { 'composer.json': { name: 'team/club' }, artisan: '' },
    { kind: 'Laravel', name: 'club', command: 'php artisan serve' },
  ],
  [
    'a compose file alone',
    { 'docker-compose.yml': 'name: stack\nservices: {}\n' },
    { kind: 'Compose', name: 'stack', command: 'docker compose up' },
  ],
  [
    'a compose file beside a package',
    { 'compose.yaml': 'services: {}\n', 'package.json': { name: 'web', scripts: { dev: 'x' } } },
    { kind: 'Node.js', name: 'web', command: 'npm run dev' },
  ],
  [
    'Maven, whose parent has a version too',
    {
      'pom.xml':
        '<project><parent><artifactId>p</artifactId><version>9</version></parent><artifactId>app</artifactId><version>1.0</version></project>',
    },
    { kind: 'Maven', name: 'app', version: '1.0' },
  ],
  [
    'a Phoenix application',
    { 'mix.exs': '[app: :chat, version: "0.1.0", deps: [{:phoenix, "1.7"}]]' },
    { kind: 'Elixir', name: 'chat', version: '0.1.0', command: 'mix phx.server' },
  ],
  [
    'Deno with comments',
    { 'deno.jsonc': '// tasks\n{ "tasks": { "dev": "x" } }' },
    { kind: 'Deno', command: 'deno task dev' },
  ],
  [
    'a broken package keeps its folder as a name',
    { 'package.json': '{ "name": ' },
    { name: 'thing', kind: 'Node.js', problem: 'package.json is not valid JSON.' },
  ],
  [
    'a package of another shape than expected',
    { 'package.json': '{"name":[1],"version":5,"scripts":"x","dependencies":null}' },
    { name: 'thing', version: undefined, command: undefined },
  ],
];

for (const [title, files, expected] of CASES) {
  test(title, async (t) => {
    const project = await read(t, files);
    for (const [key, value] of Object.entries(expected)) assert.equal(project[key], value, key);
  });
}

test('a folder without a manifest is no project', async (t) => {
  assert.equal(await read(t, { 'notes.txt': 'x' }), null);
});

test('missing dependencies are told', async (t) => {
  const scripts = { dev: 'x' };
  assert.equal((await read(t, { 'package.json': { scripts, dependencies: { a: '1' } } })).needsInstall, true);
  assert.equal(
    (await read(t, { 'package.json': { scripts, dependencies: { a: '1' } }, 'node_modules/a/b': '' })).needsInstall,
    false,
  );
  assert.equal((await read(t, { 'package.json': { scripts } })).needsInstall, false);
});

test('a named pipe or a folder with a manifest name does not hold up the reading', async (t) => {
  const home = await makeHome(t);
  execFileSync('mkfifo', [join(home, 'package.json')]);
  await writeTree(home, { 'Cargo.toml/x': '' });
  const project = await readProject(home, new Set(['package.json', 'Cargo.toml']));
  assert.deepEqual(project.manifests, ['package.json', 'Cargo.toml']);
});

test('a string is read from its own TOML table only', () => {
  const text = 'name = "top"\n[a]\nname = "one"\n[[bin]]\nname = "two"\n';
  assert.equal(tomlString(text, 'a', 'name'), 'one');
  assert.equal(tomlString(text, 'b', 'name'), undefined);
  assert.equal(tomlString(text, '', 'name'), 'top');
});
