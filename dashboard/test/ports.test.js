import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { createServer } from 'node:net';
import { test } from 'node:test';
import { parseLsof, parseNetstat, unescapeName } from '../lib/ports/darwin.js';
import { parseListening } from '../lib/ports/linux.js';
import { parseStat } from '../lib/processes/proc.js';
import { PortWatcher } from '../lib/ports/port-watcher.js';
import { portOf } from './support/engine.js';
import { makeHome } from './support/machine.js';

const HEAD = '  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n';

test('listening sockets are told from connections in /proc/net/tcp', () => {
  const text = `${HEAD}   0: 0100007F:1538 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1000        0 4711 1 0 100 0 0 10 0
   1: 00000000:0050 00000000:0000 0A 00000000:00000000 00:00000000 00000000     0        0 4712 1 0 100 0 0 10 0
   2: 0100007F:1538 0100007F:C350 01 00000000:00000000 00:00000000 00000000  1000        0 4713 1 0 100 0 0 10 0\n`;
  assert.deepEqual(parseListening(text), [
    { address: '127.0.0.1', port: 5432, uid: 1000, inode: '4711' },
    { address: '0.0.0.0', port: 80, uid: 0, inode: '4712' },
  ]);
});

test('addresses of the sixth version are written in their shortest form', () => {
  const line = (address) => `   0: ${address}:0BB8 0:0000 0A 0:0 00:0 0  1000        0 1 1 0\n`;
  const addressOf = (hex) => parseListening(HEAD + line(hex))[0].address;
  assert.equal(addressOf('00000000000000000000000000000000'), '::');
  assert.equal(addressOf('00000000000000000000000001000000'), '::1');
  assert.equal(addressOf('0000000000000000FFFF00000100007F'), '127.0.0.1');
  assert.equal(addressOf('B80D0120000000000000000001000000'), '2001:db8::1');
});

test('a process name with brackets and blanks does not confuse its group', () => {
  assert.deepEqual(parseStat('12 (a) b) (c) S 34 56 78 0 -1'), { state: 'S', parent: 34, group: 56 });
});

test('the tools of macOS are understood', () => {
  const netstat = `Active Internet connections (including servers)
Proto Recv-Q Send-Q  Local Address          Foreign Address        (state)      rhiwat shiwat    pid   epid
tcp4       0      0  127.0.0.1.5432         *.*                    LISTEN      131072 131072    411      0
tcp46      0      0  *.3000                 *.*                    LISTEN      131072 131072    500      0
tcp6       0      0  ::1.6379               *.*                    LISTEN      131072 131072    600      0
tcp4       0      0  192.168.1.2.50000      1.2.3.4.443            ESTABLISHED 131072 131072    700      0\n`;
  assert.deepEqual(parseNetstat(netstat), [
    { address: '127.0.0.1', port: 5432 },
    { address: '::', port: 3000 },
    { address: '::1', port: 6379 },
  ]);
  const lsof =
    'p411\ng410\nR1\ncpostgres\nu501\nf7\nn127.0.0.1:5432\nf8\nn[::1]:5432\np500\ng500\nR499\ncnode\nu501\nf20\nn*:3000\n';
  assert.deepEqual(parseLsof(lsof), [
    {
      pid: 411,
      group: 410,
      parent: 1,
      name: 'postgres',
      uid: 501,
      sockets: [
        { address: '127.0.0.1', port: 5432 },
        { address: '::1', port: 5432 },
      ],
    },
    { pid: 500, group: 500, parent: 499, name: 'node', uid: 501, sockets: [{ address: '0.0.0.0', port: 3000 }] },
  ]);
  assert.equal(parseLsof('p411\nfcwd\nn/Users/me/shop\n')[0].folder, '/Users/me/shop');
});

async function listeningChild(t, folder) {
  const script = "const s=require('net').createServer().listen(0,'127.0.0.1',()=>console.log(s.address().port))";
  const child = spawn(process.execPath, ['-e', script], { cwd: folder, stdio: ['ignore', 'pipe', 'inherit'] });
  t.after(() => child.kill('SIGKILL'));
  const [chunk] = await once(child.stdout, 'data');
  return { child, port: Number(chunk) };
}

test('a real listening port is known with its process and folder, and forgotten afterwards', async (t) => {
  const folder = await makeHome(t);
  const { child, port } = await listeningChild(t, folder);
  const watcher = new PortWatcher();
  await watcher.look();
  const entry = watcher.ports.find((candidate) => candidate.port === port);
  assert.equal(entry.process.pid, child.pid);
  assert.equal(entry.process.folder, folder);
  assert.match(entry.process.command, /createServer/);
  assert.deepEqual(entry.addresses, ['127.0.0.1']);

  child.kill('SIGKILL');
  await once(child, 'exit');
  await watcher.look();
  assert.equal(
    watcher.ports.some((candidate) => candidate.port === port),
    false,
  );
});

test('looking again without a change asks for no process and tells of no change', async () => {
  let asked = 0;
  const socket = { address: '::', port: 3000, uid: process.getuid(), inode: '1' };
  const source = {
    interval: 1e6,
    sockets: async () => [socket],
    withProcesses: async (sockets) => {
      asked += 1;
      return sockets.map((entry) => ({ ...entry, process: { pid: process.pid, name: 'node' } }));
    },
  };
  const watcher = new PortWatcher(source);
  let changes = 0;
  watcher.on('change', () => {
    changes += 1;
  });
  await watcher.look();
  await watcher.look();
  await watcher.look();
  assert.deepEqual([asked, changes], [1, 1]);
});

test('one server on several addresses is one port', async (t) => {
  const server = createServer().listen(0, '127.0.0.1');
  await once(server, 'listening');
  const port = portOf(server);
  const other = createServer().listen({ port, host: '127.0.0.2' });
  await once(other, 'listening');
  t.after(() => {
    server.close();
    other.close();
  });
  const watcher = new PortWatcher();
  await watcher.look();
  const entries = watcher.ports.filter((entry) => entry.port === port);
  assert.equal(entries.length, 1);
  assert.deepEqual(entries[0].addresses.sort(), ['127.0.0.1', '127.0.0.2']);
});

test('folders whose names are not ASCII are read as lsof writes them', () => {
  assert.equal(unescapeName('/Users/me/caf\\xc3\\xa9/\\xe6\\x97\\xa5'), '/Users/me/café/日');
  assert.equal(unescapeName('/a\\\\b\\nc^Ad'), '/a\\b\nc\u0001d');
  assert.equal(unescapeName('/plain/näme'), '/plain/näme');
  assert.equal(parseLsof('p411\nfcwd\nn/Users/me/\\xc3\\xbcber\n')[0].folder, '/Users/me/über');
});
