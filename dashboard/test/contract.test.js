import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { createServer } from 'node:net';
import { dirname, join } from 'node:path';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { portOf } from './support/engine.js';
import { makeHome, startDashboard, TOKEN, writeTree } from './support/machine.js';
import { eventually } from './support/waiting.js';

const script = fileURLToPath(new URL('../server.js', import.meta.url));

async function takenPort(t, host = '127.0.0.1') {
  const server = createServer().listen(0, host);
  await once(server, 'listening');
  t.after(() => server.close());
  return portOf(server);
}

function isAlive(pid) {
  try {
    process.kill(pid, 0);
    return true;
  } catch {
    return false;
  }
}

test('the wanted port is taken when it is free', async (t) => {
  const server = createServer().listen(0, '127.0.0.1');
  await once(server, 'listening');
  const port = portOf(server);
  server.close();
  await once(server, 'close');
  const dashboard = await startDashboard(t, await makeHome(t), { HARBROOK_PORT: String(port) });
  assert.equal(dashboard.port, port);
  assert.equal(dashboard.output(), `HARBROOK_PORT ${port}\n`);
});

test('a taken port is left for another one when that is allowed', async (t) => {
  const port = await takenPort(t);
  const dashboard = await startDashboard(t, await makeHome(t), {
    HARBROOK_PORT: String(port),
    HARBROOK_PORT_FALLBACK: '1',
  });
  assert.notEqual(dashboard.port, port);
  assert.equal((await dashboard.get('api/settings')).status, 200);
});

test('a port that another program holds on the other loopback address counts as taken', async (t) => {
  let port;
  try {
    port = await takenPort(t, '::1');
  } catch {
    t.skip('this machine has no IPv6 loopback address');
    return;
  }
  const dashboard = await startDashboard(t, await makeHome(t), {
    HARBROOK_PORT: String(port),
    HARBROOK_PORT_FALLBACK: '1',
  });
  assert.notEqual(dashboard.port, port);
});

test('without that permission a taken port is the end', async (t) => {
  const port = await takenPort(t);
  for (const fallback of ['', '0', 'yes']) {
    const start = startDashboard(t, await makeHome(t), {
      HARBROOK_PORT: String(port),
      HARBROOK_PORT_FALLBACK: fallback,
    });
    await assert.rejects(start, /ended with 1: .*cannot listen/);
  }
});

test('a port that is none is refused', async (t) => {
  await assert.rejects(startDashboard(t, await makeHome(t), { HARBROOK_PORT: '70000' }), /not a port number/);
});

test('only the loopback interface is listened on', async (t) => {
  const dashboard = await startDashboard(t, await makeHome(t));
  const overview = await dashboard.until(({ ports }) => ports.some(({ port }) => port === dashboard.port));
  const { addresses } = overview.ports.find(({ port }) => port === dashboard.port);
  assert.ok(
    addresses.length > 0 && addresses.every((address) => address === '127.0.0.1' || address === '::1'),
    addresses.join(),
  );
});

test('SIGTERM, SIGINT and SIGHUP end it with success', async (t) => {
  for (const signal of /** @type {const} */ (['SIGTERM', 'SIGINT', 'SIGHUP'])) {
    const dashboard = await startDashboard(t, await makeHome(t));
    // A listening page does not hold it up.
    const stream = await dashboard.get('api/events');
    dashboard.child.kill(signal);
    assert.deepEqual(await dashboard.ended, [0, null]);
    await stream.text().catch(() => {});
  }
});

test('the end of standard input ends it', async (t) => {
  const dashboard = await startDashboard(t, await makeHome(t));
  dashboard.child.stdin.end();
  assert.deepEqual(await dashboard.ended, [0, null]);
});

test('it ends when its parent is gone', async (t) => {
  const parent = spawn('sleep', ['60']);
  t.after(() => parent.kill('SIGKILL'));
  const dashboard = await startDashboard(t, await makeHome(t), { HARBROOK_PARENT: String(parent.pid) });
  assert.equal((await dashboard.get('api/settings')).status, 200);
  parent.kill('SIGKILL');
  assert.deepEqual(await dashboard.ended, [0, null]);
});

test('a reader of its output that goes away does not end it', async (t) => {
  const dashboard = await startDashboard(t, await makeHome(t));
  dashboard.child.stdout.destroy();
  dashboard.child.stderr.destroy();
  assert.equal((await dashboard.get('api/settings')).status, 200);
});

for (const way of /** @type {const} */ (['SIGTERM', 'SIGKILL', 'stdin'])) {
  test(`what it started ends with it (${way})`, async (t) => {
    const home = await makeHome(t);
    const project = join(home, 'projects/p');
    await writeTree(project, { 'package.json': { name: 'p', scripts: { dev: 'x' } } });
    const dashboard = await startDashboard(t, home);
    await dashboard.until(({ projects }) => projects.length === 1);
    await dashboard.post('api/project/settings', { path: project, command: 'sleep 80 & echo "pid $!"; wait' });
    await dashboard.post('api/project/start', { path: project });
    const log = `api/project/log?path=${encodeURIComponent(project)}`;
    const match = await eventually(async () => /pid (\d+)/.exec(await (await dashboard.get(log)).text()), {
      what: 'the child',
    });
    const pid = Number(match[1]);
    assert.ok(isAlive(pid));
    if (way === 'stdin') dashboard.child.stdin.end();
    else dashboard.child.kill(way);
    await dashboard.ended;
    await eventually(() => !isAlive(pid), { what: 'the child to end' });
  });
}

test('it runs by hand too, with a token of its own in the address that it prints', async (t) => {
  /** @type {NodeJS.ProcessEnv} */
  const environment = { ...process.env, HOME: await makeHome(t), HARBROOK_PORT: '0' };
  delete environment.HARBROOK_TOKEN;
  const child = spawn(process.execPath, [script], {
    env: environment,
    cwd: dirname(script),
    stdio: ['ignore', 'pipe', 'inherit'],
  });
  t.after(() => child.kill('SIGKILL'));
  let output = '';
  child.stdout.on('data', (chunk) => {
    output += chunk;
  });
  const [, address, token] = await eventually(() =>
    /Open (http:\/\/localhost:\d+)\/#token=([0-9a-f]{64})\n/.exec(output),
  );
  assert.notEqual(token, TOKEN);
  assert.equal((await fetch(`${address}/api/state`, { headers: { 'X-Harbrook-Token': token } })).status, 200);
  assert.equal((await fetch(`${address}/api/state`)).status, 401);
});
