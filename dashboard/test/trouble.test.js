// What must neither end the dashboard nor take a running project out of reach.
import assert from 'node:assert/strict';
import { once } from 'node:events';
import { rm } from 'node:fs/promises';
import { Agent, request } from 'node:http';
import { connect } from 'node:net';
import { join } from 'node:path';
import { test } from 'node:test';
import { makeHome, startDashboard, TOKEN, writeTree } from './support/machine.js';
import { eventually } from './support/waiting.js';

const DESCRIPTORS = 64;

test('a start without free descriptors is refused, and all goes on', async (t) => {
  const home = await makeHome(t);
  const path = join(home, 'projects/shop');
  await writeTree(path, { 'package.json': { name: 'shop', scripts: { dev: 'x' } } });
  const dashboard = await startDashboard(t, home, {}, { descriptors: DESCRIPTORS });
  await dashboard.until(({ ready, projects }) => ready && projects.length === 1);
  await dashboard.post('api/project/settings', { path, command: 'sleep 70' });

  const agent = new Agent({ keepAlive: true, maxSockets: 1 });
  t.after(() => agent.destroy());
  const ask = (method, address, body) =>
    new Promise((resolve, reject) => {
      const headers = { 'X-Harbrook-Token': TOKEN, 'X-Harbrook': '1', 'Content-Type': 'application/json' };
      const call = request(
        { agent, host: 'localhost', port: dashboard.port, method, path: address, headers },
        (answer) => {
          let text = '';
          answer.setEncoding('utf8').on('data', (chunk) => {
            text += chunk;
          });
          answer.on('end', () => resolve({ status: answer.statusCode, text }));
        },
      );
      call.on('error', reject);
      call.end(body);
    });
  const start = () => ask('POST', '/api/project/start', JSON.stringify({ path }));
  assert.equal((await ask('GET', '/api/state')).status, 200);

  const others = Array.from({ length: DESCRIPTORS }, () => connect(dashboard.port, '127.0.0.1').on('error', () => {}));
  await Promise.all(others.map((socket) => once(socket, 'connect')));
  const refused = await start();
  assert.equal(refused.status, 500, refused.text);
  assert.match(refused.text, /could not be started: too many files are open/);
  assert.equal(JSON.parse((await ask('GET', '/api/state')).text).projects[0].appRunning, false);

  for (const socket of others) socket.destroy();
  await eventually(async () => (await start()).status === 200, { what: 'a start with free descriptors' });
  assert.equal(JSON.parse((await ask('GET', '/api/state')).text).projects[0].appRunning, true);
});

test('a running project whose manifest goes is still there to be read and stopped', async (t) => {
  const home = await makeHome(t);
  const path = join(home, 'projects/shop');
  await writeTree(path, { 'package.json': { name: 'shop', scripts: { dev: 'x' } } });
  const dashboard = await startDashboard(t, home);
  await dashboard.until(({ projects }) => projects.length === 1);
  await dashboard.post('api/project/settings', { path, command: 'echo served; sleep 70' });
  await dashboard.post('api/project/start', { path });
  await rm(join(path, 'package.json'));
  const { projects } = await dashboard.until((overview) => overview.projects[0]?.isGone);
  assert.deepEqual([projects.length, projects[0].name, projects[0].appRunning], [1, 'shop', true]);
  const [inMenu] = (await dashboard.json('api/state')).projects;
  assert.deepEqual([inMenu.name, inMenu.appRunning, inMenu.running], ['shop', true, true]);
  const log = await dashboard.get(`api/project/log?path=${encodeURIComponent(path)}`);
  assert.match(await log.text(), /served/);
  assert.equal((await dashboard.post('api/project/stop', { path })).status, 200);
  await dashboard.until((overview) => overview.projects.length === 0);
});

test('a project that failed stays until its manifest is back or it runs well', async (t) => {
  const home = await makeHome(t);
  const path = join(home, 'projects/shop');
  await writeTree(path, { 'package.json': { name: 'shop', scripts: { dev: 'x' } } });
  const dashboard = await startDashboard(t, home);
  await dashboard.until(({ projects }) => projects.length === 1);
  await dashboard.post('api/project/settings', { path, command: 'rm package.json; exit 4' });
  await dashboard.post('api/project/start', { path });
  const { projects } = await dashboard.until(
    (overview) => overview.projects[0]?.isGone && overview.projects[0].run.ended,
  );
  assert.equal(projects[0].run.code, 4);
  const runs = `api/project/runs?path=${encodeURIComponent(path)}`;
  assert.deepEqual(
    (await dashboard.json(runs)).runs.map(({ code }) => code),
    [4],
  );
});
