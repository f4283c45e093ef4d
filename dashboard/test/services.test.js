import assert from 'node:assert/strict';
import { EventEmitter, once } from 'node:events';
import { createHash } from 'node:crypto';
import { createServer as createHttpServer } from 'node:http';
import { createServer } from 'node:net';
import { join } from 'node:path';
import { test } from 'node:test';
import { probeDocker } from '../lib/services/docker.js';
import { engineTargets, targetOf } from '../lib/services/engines.js';
import { postgresSockets, postgresVersion, probePostgres } from '../lib/services/postgres.js';
import { probeRedis } from '../lib/services/redis.js';
import { isForBrowsers } from '../lib/ports/protocols.js';
import { Services } from '../lib/services/services.js';
import { fakeEngine, listen } from './support/engine.js';
import { makeHome, writeTree } from './support/machine.js';

const answering = (reply) => createServer((socket) => socket.once('data', (bytes) => socket.write(reply(bytes))));
const silent = () => createServer(() => {});
const tlsQuestion = '0000000804d2162f';
const postgres = (answer) => answering((bytes) => (bytes.toString('hex') === tlsQuestion ? answer : 'E'));
const bulk = (text) => `$${Buffer.byteLength(text)}\r\n${text}\r\n`;

test('a PostgreSQL server is known by its answer to the TLS question', async (t) => {
  assert.deepEqual(await probePostgres(await listen(t, postgres('N'))), { tls: false });
  assert.deepEqual(await probePostgres(await listen(t, postgres('S'))), { tls: true });
  assert.equal(
    await probePostgres(
      await listen(
        t,
        answering(() => 'HTTP/1.1 400 Bad Request\r\n'),
      ),
    ),
    null,
  );
});

test('a silent, a closing and an absent server are none', async (t) => {
  const closing = createServer((socket) => socket.end());
  for (const probe of [probePostgres, probeRedis]) {
    assert.equal(await probe(await listen(t, silent())), null);
  }
  const target = await listen(t, closing);
  assert.equal(await probePostgres(target), null);
  assert.equal(await probeRedis(target), null);
  const gone = createServer();
  const free = await listen(t, gone);
  gone.close();
  await once(gone, 'close');
  assert.equal(await probePostgres(free), null);
});

test('PostgreSQL sockets are found by their names, versions in the data folder', async (t) => {
  const home = await makeHome(t);
  await writeTree(home, { '.s.PGSQL.5433.lock': '', 'data/PG_VERSION': '16\n' });
  await listen(t, postgres('N'), { path: join(home, '.s.PGSQL.5433') });
  assert.deepEqual([...(await postgresSockets([home, '/does/not/exist']))], [[5433, join(home, '.s.PGSQL.5433')]]);
  assert.equal(await postgresVersion({ folder: join(home, 'data'), command: '' }), '16');
  assert.equal(
    await postgresVersion({ folder: home, command: '/opt/homebrew/opt/postgresql@15/bin/postgres -D x' }),
    '15',
  );
  assert.equal(await postgresVersion({ folder: home, command: 'postgres' }), null);
});

test('Redis tells its version and its keys', async (t) => {
  const info = '# Server\r\nredis_version:7.2.4\r\n# Keyspace\r\ndb0:keys=12,expires=0\r\ndb1:keys=3,expires=0\r\n';
  assert.deepEqual(
    await probeRedis(
      await listen(
        t,
        answering(() => `+PONG\r\n${bulk(info)}`),
      ),
    ),
    { product: 'Redis', version: '7.2.4', keys: 15, needsPassword: false },
  );
  const valkey = '# Server\r\nredis_version:7.2.4\r\nvalkey_version:8.0.1\r\n# Keyspace\r\n';
  assert.deepEqual(
    await probeRedis(
      await listen(
        t,
        answering(() => `+PONG\r\n${bulk(valkey)}`),
      ),
    ),
    { product: 'Valkey', version: '8.0.1', keys: 0, needsPassword: false },
  );
});

test('Redis with a password, or with little to tell, is still Redis', async (t) => {
  assert.equal(
    (
      await probeRedis(
        await listen(
          t,
          answering(() => '-NOAUTH Authentication required.\r\n-NOAUTH x\r\n'),
        ),
      )
    ).needsPassword,
    true,
  );
  assert.deepEqual(
    await probeRedis(
      await listen(
        t,
        answering(() => '+PONG\r\n-NOPERM no\r\n'),
      ),
    ),
    { product: 'Redis', version: null, keys: null, needsPassword: false },
  );
  assert.equal(
    await probeRedis(
      await listen(
        t,
        answering(() => 'SSH-2.0-x\r\n\r\n'),
      ),
    ),
    null,
  );
});

const CONTAINERS = [
  {
    Id: 'b'.repeat(64),
    Names: ['/web'],
    Image: 'nginx:1',
    State: 'running',
    Status: 'Up 2 hours',
    Ports: [
      { PrivatePort: 80, PublicPort: 8080, IP: '0.0.0.0' },
      { PrivatePort: 80, PublicPort: 8080, IP: '::' },
      { PrivatePort: 443 },
      { PrivatePort: 53, PublicPort: 5353, Type: 'udp' },
    ],
    Labels: { 'com.docker.compose.project': 'shop', 'com.docker.compose.project.working_dir': '/p/shop' },
  },
  {
    Id: 'a'.repeat(64),
    Names: ['/old'],
    Image: 'redis:7',
    State: 'exited',
    Status: 'Exited (0)',
    Ports: [],
    Labels: {},
  },
];

test('containers are described by what the engine says', async (t) => {
  const engine = await fakeEngine(t, await makeHome(t), { containers: CONTAINERS });
  const found = await probeDocker([{ socketPath: engine.path }]);
  assert.equal(found.available, true);
  assert.equal(found.version, '27.1');
  assert.deepEqual(
    found.containers.map(({ name }) => name),
    ['old', 'web'],
  );
  assert.deepEqual(found.containers[1], {
    id: 'b'.repeat(12),
    name: 'web',
    image: 'nginx:1',
    state: 'running',
    status: 'Up 2 hours',
    ports: [{ port: 8080, inside: 80 }],
    composeProject: 'shop',
    folder: '/p/shop',
  });
});

test('no engine is no error; one that fails or hangs is told', async (t) => {
  const home = await makeHome(t);
  assert.deepEqual(await probeDocker([{ socketPath: join(home, 'none') }]), { available: false, reason: null });
  const failing = await fakeEngine(t, home, { status: 500 });
  assert.match((await probeDocker([{ socketPath: failing.path }])).reason, /status 500/);
  const other = await makeHome(t);
  const hanging = await fakeEngine(t, other, { hang: true });
  assert.match((await probeDocker([{ socketPath: hanging.path }])).reason, /did not answer in time/);
  assert.equal((await probeDocker([{ socketPath: hanging.path }, { socketPath: failing.path }])).available, false);
});

test('the user’s choice of an engine goes before the usual places', () => {
  const targets = (environment) => engineTargets({ home: '/h', environment });
  assert.deepEqual(targets({ DOCKER_HOST: 'unix:///x.sock' }), [{ socketPath: '/x.sock' }]);
  assert.deepEqual(targets({ CONTAINER_HOST: 'unix:///y.sock' }), [{ socketPath: '/y.sock' }]);
  assert.deepEqual(targets({ DOCKER_HOST: 'tcp://127.0.0.1:2375' }), [{ host: '127.0.0.1', port: 2375 }]);
  const usual = targets({ XDG_RUNTIME_DIR: '/run/user/1' }).map(({ socketPath }) => socketPath);
  for (const path of ['/var/run/docker.sock', '/run/user/1/podman/podman.sock', '/h/.rd/docker.sock']) {
    assert.ok(usual.includes(path), path);
  }
});

test('services follow the ports and the engine’s events', async (t) => {
  const home = await makeHome(t);
  const engine = await fakeEngine(t, home, { containers: [] });
  const database = await listen(t, postgres('N'));
  const ports = Object.assign(new EventEmitter(), { ports: [] });
  const services = new Services({ home, ports, targets: () => [{ socketPath: engine.path }], postgresFolders: [home] });
  t.after(() => services.close());
  const change = () => once(services, 'change', { signal: AbortSignal.timeout(8000) });

  let changed = change();
  services.start();
  await changed;
  assert.deepEqual(services.value.postgres, []);
  assert.equal(services.value.docker.available, true);

  changed = change();
  ports.ports = [
    { port: database.port, addresses: ['127.0.0.1'], process: { pid: 1, name: 'postgres', command: '', folder: null } },
  ];
  ports.emit('change');
  await changed;
  assert.deepEqual(services.value.postgres, [{ port: database.port, socket: null, tls: false, version: null }]);

  changed = change();
  engine.containers = CONTAINERS;
  engine.tell();
  await changed;
  assert.equal(services.value.docker.containers.length, 2);
});

test('a program on another port that is neither named nor published like a service is left in peace', async (t) => {
  const home = await makeHome(t);
  let asked = 0;
  const server = createServer(() => {
    asked += 1;
  });
  const { port } = await listen(t, server);
  const ports = Object.assign(new EventEmitter(), {
    ports: [{ port, addresses: ['127.0.0.1'], process: { pid: 1, name: 'node', command: '' } }],
  });
  const services = new Services({ home, ports, targets: () => [], postgresFolders: [] });
  await services.look();
  assert.equal(asked, 0);
  assert.equal(services.value.ready, true);
});

test('an engine of another kind is asked where that can be, and else it is said', async (t) => {
  assert.deepEqual(targetOf('tcp://[::1]:2375'), { host: '::1', port: 2375 });
  const safe = targetOf('tcp://build.example', '/certificates');
  assert.deepEqual([safe.host, safe.port, safe.isSafe], ['build.example', 2376, true]);
  for (const address of ['ssh://me@build.example', 'npipe:////./pipe/docker_engine', 'tcp://[', 'x']) {
    assert.match((await probeDocker([targetOf(address)])).reason, /cannot be asked from here/);
  }
  const { port } = await listen(
    t,
    createHttpServer((request, response) => response.end(request.url === '/version' ? '{"Version":"5.4"}' : '[]')),
  );
  const found = await probeDocker([targetOf(`tcp://127.0.0.1:${port}`)]);
  assert.deepEqual([found.available, found.version, found.socket], [true, '5.4', `127.0.0.1:${port}`]);
});

test('the engine of the chosen context is asked', async (t) => {
  const home = await makeHome(t);
  const id = createHash('sha256').update('colima').digest('hex');
  await writeTree(home, {
    '.docker/config.json': { currentContext: 'colima' },
    [`.docker/contexts/meta/${id}/meta.json`]: { Name: 'colima', Endpoints: { docker: { Host: 'unix:///c.sock' } } },
  });
  const targets = (environment) => engineTargets({ home, environment });
  assert.deepEqual(targets({}), [{ socketPath: '/c.sock' }]);
  assert.deepEqual(targets({ DOCKER_HOST: 'unix:///x.sock' }), [{ socketPath: '/x.sock' }]);
  assert.ok(targets({ DOCKER_CONTEXT: 'default' }).length > 3);
  await writeTree(home, { '.docker/config.json': 'no JSON' });
  assert.ok(targets({}).length > 3);
});

test('an engine that refuses to tell of its events is left in peace', async (t) => {
  const home = await makeHome(t);
  const engine = await fakeEngine(t, home, { refuseEvents: true });
  const ports = Object.assign(new EventEmitter(), { ports: [] });
  const services = new Services({ home, ports, targets: () => [{ socketPath: engine.path }], postgresFolders: [home] });
  t.after(() => services.close());
  services.start();
  await once(services, 'change', { signal: AbortSignal.timeout(8000) });
  await new Promise((resolve) => setTimeout(resolve, 2500));
  const count = (path) => engine.asked.filter((asked) => asked === path).length;
  assert.deepEqual([count('/events'), count('/version')], [1, 1]);
  await services.look();
  assert.deepEqual([count('/events'), count('/version')], [1, 2]);
});

test('a PostgreSQL server is asked once for a port and process', async (t) => {
  const home = await makeHome(t);
  let asked = 0;
  const server = answering(() => {
    asked += 1;
    return 'S';
  });
  const { port } = await listen(t, server);
  const entry = (pid) => ({
    port,
    addresses: ['127.0.0.1'],
    process: { pid, name: 'postgres', command: '', folder: null },
  });
  const ports = Object.assign(new EventEmitter(), { ports: [entry(1)] });
  const services = new Services({ home, ports, targets: () => [], postgresFolders: [home] });
  for (let look = 0; look < 4; look += 1) await services.look();
  assert.equal(asked, 1);
  assert.equal(services.value.postgres[0].tls, true);
  ports.ports = [entry(2)];
  await services.look();
  assert.equal(asked, 2);
  ports.ports = [];
  await services.look();
  assert.deepEqual(services.value.postgres, []);
});

test('ports that no browser can use are told from the others', () => {
  const process = (name) => ({ pid: 1, name, command: '' });
  assert.equal(isForBrowsers({ port: 3000, process: process('node') }), true);
  assert.equal(isForBrowsers({ port: 5432, process: null }), false);
  assert.equal(isForBrowsers({ port: 3000, process: process('postgres') }), false);
  const container = (port, inside) => ({ ports: [{ port, inside }] });
  assert.equal(isForBrowsers({ port: 15432, process: null, container: container(15432, 5432) }), false);
  assert.equal(isForBrowsers({ port: 5432, process: null, container: container(5432, 80) }), true);
});
