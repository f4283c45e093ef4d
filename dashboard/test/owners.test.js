import assert from 'node:assert/strict';
import { test } from 'node:test';
import {
  composedAndRunning,
  containersWithProjects,
  isHelper,
  portsWithProjects,
  projectLookup,
} from '../lib/owners.js';

const PROJECTS = [
  { path: '/p', realPath: '/p', kind: 'Compose' },
  { path: '/p/web', realPath: '/p/web', kind: 'Vite' },
  { path: '/l/x', realPath: '/r/x', kind: 'Compose' },
];
const projectOf = projectLookup(PROJECTS);

const CONTAINERS = containersWithProjects(
  [
    { name: 'db', state: 'running', ports: [{ port: 5432, inside: 5432 }], folder: '/p/web' },
    { name: 'old', state: 'exited', ports: [{ port: 6379, inside: 6379 }], folder: '/p' },
    { name: 'tiles', state: 'running', ports: [{ port: 8081, inside: 80 }], folder: null },
    { name: 'job', state: 'running', ports: [], folder: '/l/x/deploy' },
  ],
  projectOf,
);

test('a port belongs to the run that opened it, else to the innermost project above its folder', () => {
  const ownerOf = (holder, groups) =>
    portsWithProjects([{ port: 1, process: holder }], { projectOf, groups })[0].project;
  assert.equal(ownerOf({ pid: 9, group: 9, folder: '/p/web/src' }), '/p/web');
  assert.equal(ownerOf({ pid: 9, group: 9, folder: '/p' }), '/p');
  assert.equal(ownerOf({ pid: 9, group: 9, folder: '/r/x' }), '/l/x');
  assert.equal(ownerOf({ pid: 9, group: 9, folder: '/pp' }), null);
  assert.equal(ownerOf({ pid: 9, group: 7, folder: '/' }, new Map([[7, '/p']])), '/p');
  assert.equal(ownerOf({ pid: process.pid, group: 9, folder: '/p' }), null);
  assert.equal(ownerOf(null), null);
});

test('a container belongs to the project that its compose file lies in, by whatever path', () => {
  assert.deepEqual(
    CONTAINERS.map(({ project }) => project),
    ['/p/web', '/p', null, '/l/x'],
  );
  assert.deepEqual(containersWithProjects(undefined, projectOf), []);
});

test('a published port belongs to its running container and that one’s project, unless a project’s own process holds it', () => {
  const find = (port, holder) => {
    const [{ project, container }] = portsWithProjects([{ port, process: holder }], {
      projectOf,
      containers: CONTAINERS,
    });
    return [project, container?.name ?? null];
  };
  assert.deepEqual(find(5432, null), ['/p/web', 'db']);
  assert.deepEqual(find(5432, { pid: 9, group: 9, folder: '/' }), ['/p/web', 'db']);
  assert.deepEqual(find(5432, { pid: 9, group: 9, folder: '/p' }), ['/p', null]);
  assert.deepEqual(find(8081, null), [null, 'tiles']);
  assert.deepEqual(find(6379, null), [null, null]);
});

test('containers make a project run only where the project is nothing else', () => {
  assert.deepEqual([...composedAndRunning(PROJECTS, CONTAINERS)], ['/l/x']);
});

test('tunnels and language servers are told from what runs a project', () => {
  const helpers = [
    ['ngrok', 'ngrok http 3000'],
    ['node', 'node /home/me/.vscode-server/bin/x/out/server-main.js'],
    ['node', 'node node_modules/typescript/lib/tsserver.js'],
    ['gopls', 'gopls serve'],
    ['vue-language-server', 'vue-language-server --stdio'],
    ['cloudflared', 'cloudflared tunnel'],
  ];
  for (const [name, command] of helpers) assert.equal(isHelper({ name, command }), true, command);
  const programs = [
    ['node', 'node server.js'],
    ['python3', 'python3 manage.py runserver'],
    ['node', 'node node_modules/.bin/vite'],
  ];
  for (const [name, command] of programs) assert.equal(isHelper({ name, command }), false, command);
});
