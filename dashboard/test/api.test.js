import assert from 'node:assert/strict';
import { request } from 'node:http';
import { connect } from 'node:net';
import { once } from 'node:events';
import { readFile } from 'node:fs/promises';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { makeHome, startDashboard, TOKEN, writeTree } from './support/machine.js';

/** A request with exactly these headers; fulfilled with { status, headers, text }. */
function raw(port, { method = 'GET', path = '/api/state', headers = {}, body = '' } = {}) {
  return new Promise((resolve, reject) => {
    const call = request(
      { host: '127.0.0.1', port, method, path, headers: { Host: `localhost:${port}`, ...headers } },
      (response) => {
        let text = '';
        response.setEncoding('utf8').on('data', (chunk) => {
          text += chunk;
        });
        response.on('end', () => resolve({ status: response.statusCode, headers: response.headers, text }));
      },
    );
    call.on('error', reject);
    call.end(body);
  });
}

describe('the API', () => {
  const afterwards = [];
  const t = { after: (task) => afterwards.unshift(task) };
  let dashboard;
  let home;
  let project;
  const token = { 'X-Harbrook-Token': TOKEN };
  const honest = { ...token, 'X-Harbrook': '1', 'Content-Type': 'application/json' };
  const start = (headers, body) =>
    raw(dashboard.port, {
      method: 'POST',
      path: '/api/project/start',
      headers,
      body: body ?? JSON.stringify({ path: project }),
    });
  const nothingRuns = async () => (await dashboard.json('api/state')).projects.every(({ appRunning }) => !appRunning);

  before(async () => {
    home = await makeHome(t);
    await writeTree(home, {
      'projects/shop/package.json': { name: 'shop', version: '1.0.0', scripts: { dev: 'x' } },
      'projects/plain/go.mod': 'module plain',
    });
    project = join(home, 'projects/shop');
    dashboard = await startDashboard(t, home);
    await dashboard.until(({ ready }) => ready);
    await dashboard.post('api/project/settings', { path: project, command: 'sleep 70' });
  });
  after(async () => {
    for (const task of afterwards) await task();
  });

  test('answers nobody without the right token, on any address', async () => {
    for (const path of [
      '/api/state',
      '/api/settings',
      '/api/overview',
      '/api/events',
      '/api/project/log?path=x',
      '/api/nothing',
    ]) {
      for (const wrong of [undefined, '', 'x', TOKEN.slice(1), `${TOKEN}0`, TOKEN.toUpperCase()]) {
        const headers = wrong === undefined ? {} : { 'X-Harbrook-Token': wrong };
        assert.equal((await raw(dashboard.port, { path, headers })).status, 401, `${path} with ${wrong}`);
      }
    }
    assert.equal((await start({ ...honest, 'X-Harbrook-Token': 'x' })).status, 401);
    assert.equal((await raw(dashboard.port, { path: `/api/state?token=${TOKEN}` })).status, 401);
    assert.ok(await nothingRuns());
  });

  test('serves only the name localhost', async () => {
    for (const host of [
      '127.0.0.1',
      `127.0.0.1:${dashboard.port}`,
      'evil.example',
      `evil.example:${dashboard.port}`,
      'localhost',
      'localhost:1',
      `localhost.:${dashboard.port}`,
    ]) {
      for (const path of ['/api/state', '/', '/js/page.js']) {
        assert.equal((await raw(dashboard.port, { path, headers: { ...token, Host: host } })).status, 403, host);
      }
      assert.equal((await start({ ...honest, Host: host })).status, 403);
    }
    assert.ok(await nothingRuns());
  });

  test('lets no other origin read or change anything', async () => {
    const foreign = [
      { Origin: 'https://evil.example' },
      { Origin: 'null' },
      { Origin: 'http://localhost:3000' },
      { Origin: `https://localhost:${dashboard.port}` },
      { 'Sec-Fetch-Site': 'cross-site' },
      { 'Sec-Fetch-Site': 'same-site' },
    ];
    for (const headers of foreign) {
      const read = await raw(dashboard.port, { headers: { ...token, ...headers } });
      assert.equal(read.status, 403);
      assert.equal(read.headers['access-control-allow-origin'], undefined);
      assert.equal((await start({ ...honest, ...headers })).status, 403);
    }
    assert.equal(
      (await raw(dashboard.port, { headers: { ...token, Origin: dashboard.address, 'Sec-Fetch-Site': 'same-origin' } }))
        .status,
      200,
    );
    const preflight = await raw(dashboard.port, {
      method: 'OPTIONS',
      path: '/api/project/start',
      headers: { Origin: 'https://evil.example' },
    });
    assert.notEqual(preflight.status, 200);
    assert.equal(preflight.headers['access-control-allow-headers'], undefined);
    assert.ok(await nothingRuns());
  });

  test('changes nothing without the header that only its own clients set', async () => {
    for (const value of [undefined, '0', 'true', '']) {
      const headers = { ...honest };
      delete headers['X-Harbrook'];
      if (value !== undefined) headers['X-Harbrook'] = value;
      assert.equal((await start(headers)).status, 403);
    }
    assert.ok(await nothingRuns());
  });

  test('takes no other media type, method or address', async () => {
    for (const type of ['text/plain', 'application/x-www-form-urlencoded', 'multipart/form-data', '']) {
      assert.equal((await start({ ...honest, 'Content-Type': type })).status, 415);
    }
    assert.equal((await raw(dashboard.port, { path: '/api/project/start', headers: token })).status, 405);
    assert.equal((await raw(dashboard.port, { method: 'DELETE', path: '/api/settings', headers: honest })).status, 405);
    assert.equal((await raw(dashboard.port, { method: 'POST', path: '/', headers: honest })).status, 405);
    for (const path of ['/api/project/destroy', '/api/', '/api/state/', '/api//state', '/api/__proto__']) {
      assert.equal((await raw(dashboard.port, { path, headers: token })).status, 404, path);
    }
    assert.ok(await nothingRuns());
  });

  test('refuses malformed bodies', async () => {
    const bodies = ['', '{', '[]', 'null', '"x"', '5', '{"path":', '\xff\xfe', `{"path": "${'x'.repeat(10)}`];
    for (const body of bodies) assert.equal((await start(honest, body)).status, 400, body);
    assert.equal((await start(honest, Buffer.from([0x7b, 0xff, 0x7d]))).status, 400);
    for (const path of [
      5,
      null,
      {},
      [project],
      '',
      'relative',
      '/etc',
      `${project}/`,
      `${project}/../shop`,
      `${project}\0`,
    ]) {
      assert.equal((await start(honest, JSON.stringify({ path }))).status, 404, JSON.stringify(path));
    }
    assert.equal((await start(honest, '{"__proto__": {"path": "/x"}}')).status, 404);
    assert.ok(await nothingRuns());
  });

  test('bounds bodies, whether their length is told or not', async () => {
    const long = JSON.stringify({ path: 'x'.repeat(100_000) });
    assert.equal((await start(honest, long)).status, 413);
    assert.equal((await start({ ...honest, 'Transfer-Encoding': 'chunked' }, long)).status, 413);
    // One that only announces an immense body is answered without waiting for it.
    const socket = connect(dashboard.port, '127.0.0.1');
    socket.write(
      `POST /api/project/start HTTP/1.1\r\nHost: localhost:${dashboard.port}\r\nX-Harbrook-Token: ${TOKEN}\r\nX-Harbrook: 1\r\n` +
        'Content-Type: application/json\r\nContent-Length: 99999999999\r\n\r\n{',
    );
    const [answer] = await once(socket, 'data');
    assert.match(answer.toString(), /^HTTP\/1\.1 413/);
    socket.destroy();
  });

  test('serves the page’s own files and nothing else', async () => {
    for (const path of [
      '/../server.js',
      '/..%2fserver.js',
      '/%2e%2e/server.js',
      '/js/../../server.js',
      '/package.json',
      '/lib/settings.js',
      '//etc/passwd',
      '/etc/passwd',
      '/js',
      '/js/',
      '/index.html/',
      '/js/page.js%00',
      '/.',
      '/js\\main.js/..',
    ]) {
      const { status, text } = await raw(dashboard.port, { path });
      assert.ok(status === 404 || (status === 200 && path === '/.'), `${path} gave ${status}`);
      assert.ok(!text.includes('createHandler') && !text.includes('root:'), path);
    }
    const page = await raw(dashboard.port, { path: '/' });
    assert.equal(page.status, 200);
    assert.match(page.headers['content-security-policy'], /default-src 'none'.*frame-ancestors 'none'/);
    assert.equal(page.headers['x-content-type-options'], 'nosniff');
    assert.equal(page.headers['cross-origin-resource-policy'], 'same-origin');
    assert.ok(!page.text.includes(TOKEN));
    const again = await raw(dashboard.port, { path: '/', headers: { 'If-None-Match': page.headers.etag } });
    assert.equal(again.status, 304);
  });

  test('survives what is not HTTP', async () => {
    for (const bytes of [
      '\x16\x03\x01\x02',
      'GET\r\n\r\n',
      'GET http://[ HTTP/1.1\r\n\r\n',
      `GET / HTTP/1.1\r\nX: ${'y'.repeat(40_000)}\r\n\r\n`,
    ]) {
      const socket = connect(dashboard.port, '127.0.0.1');
      socket.on('error', () => {});
      socket.resume();
      socket.write(bytes);
      await once(socket, 'close');
    }
    assert.equal((await dashboard.get('api/state')).status, 200);
  });

  test('starts and stops as the shell’s status menu asks for it', async () => {
    const menubar = { ...honest, 'X-Harbrook-Source': 'menubar' };
    const body = JSON.stringify({ path: project }).replaceAll('/', '\\/');
    assert.equal((await start(menubar, body)).status, 200);
    let [, shop] = (await dashboard.json('api/state')).projects;
    assert.deepEqual([shop.running, shop.appRunning], [true, true]);
    assert.equal((await start(menubar, body)).status, 409);
    assert.equal(
      (await raw(dashboard.port, { method: 'POST', path: '/api/project/stop', headers: menubar, body })).status,
      200,
    );
    [, shop] = (await dashboard.json('api/state')).projects;
    assert.deepEqual([shop.running, shop.appRunning], [false, false]);
    assert.equal(
      (await raw(dashboard.port, { method: 'POST', path: '/api/project/stop', headers: menubar, body })).status,
      409,
    );
    assert.equal((await start(menubar, JSON.stringify({ path: join(home, 'projects/plain') }))).status, 409);
  });

  test('gives the snapshot in exactly its shape', async () => {
    const state = await dashboard.json('api/state');
    assert.deepEqual(Object.keys(state), ['projects', 'stats']);
    assert.deepEqual(
      state.projects.map(({ name }) => name),
      ['plain', 'shop'],
    );
    assert.deepEqual(state.projects[1], {
      name: 'shop',
      path: project,
      running: false,
      ports: [],
      hasCommand: true,
      appRunning: false,
      menubar: null,
    });
    assert.equal(state.projects[0].hasCommand, false);
    assert.deepEqual(Object.keys(state.stats), ['running', 'postgres', 'redis', 'containers']);
    assert.ok(Object.values(state.stats).every(Number.isSafeInteger));
  });

  test('keeps settings and shows them at once', async () => {
    assert.equal((await dashboard.post('api/project/settings', { path: project, menubar: false })).status, 200);
    assert.equal((await dashboard.json('api/state')).projects[1].menubar, false);
    assert.equal((await dashboard.post('api/settings', { folders: ['not absolute'] })).status, 400);
    const folder = join(home, 'elsewhere');
    await writeTree(folder, { 'x/go.mod': 'module elsewhere' });
    const answer = await (await dashboard.post('api/settings', { folders: [folder] })).json();
    assert.equal(answer.foldersAreDefault, false);
    await dashboard.until(({ projects }) => projects.map(({ name }) => name).join() === 'elsewhere');
    const kept = JSON.parse(await readFile(join(home, '.harbrook/settings.json'), 'utf8'));
    assert.deepEqual(kept.folders, [folder]);
    await dashboard.post('api/settings', { folders: null });
    await dashboard.until(({ projects }) => projects.length === 2);
  });

  test('follows a log to its end', async () => {
    await dashboard.post('api/project/settings', {
      path: project,
      command: 'echo first; sleep 0.3; echo second; exit 5',
    });
    await dashboard.post('api/project/start', { path: project });
    const text = await (await dashboard.get(`api/project/log?follow=1&path=${encodeURIComponent(project)}`)).text();
    assert.match(text, /^\$ echo first.*\nfirst\nsecond\n\nEnded with code 5\.\n$/);
    assert.equal((await dashboard.get('api/project/log?path=/etc/passwd')).status, 404);
  });
});
