// A container engine that the test plays, and the listening that it and others need.
import { once } from 'node:events';
import { createServer as createHttpServer } from 'node:http';
import { join } from 'node:path';

/** The port at which a server listens. */
export const portOf = (server) => /** @type {import('node:net').AddressInfo} */ (server.address()).port;

/**
 * Has `server` listen until the test ends.
 * @param {{ port: number, host: string } | { path: string }} where
 * @returns {Promise<any>}
 */
export async function listen(t, server, where = { port: 0, host: '127.0.0.1' }) {
  server.listen(where);
  await once(server, 'listening');
  const sockets = new Set();
  server.on('connection', (socket) => {
    sockets.add(socket);
    socket.on('error', () => {});
  });
  t.after(() => {
    server.close();
    for (const socket of sockets) socket.destroy();
  });
  return 'path' in where ? { path: where.path } : { host: '127.0.0.1', port: portOf(server) };
}

/** A container engine as far as the dashboard knows one; `events` tells its listeners of a change. */
export async function fakeEngine(t, home, { containers = [], status = 200, hang = false, refuseEvents = false } = {}) {
  const engine = { containers, listeners: new Set(), asked: [], path: join(home, 'docker.sock') };
  const server = createHttpServer((request, response) => {
    if (hang) return;
    const { pathname } = new URL(request.url, 'http://engine');
    engine.asked.push(pathname);
    response.writeHead(refuseEvents && pathname === '/events' ? 403 : status, { 'Content-Type': 'application/json' });
    if (pathname === '/version') response.end('{"Version":"27.1"}');
    else if (pathname === '/containers/json') response.end(JSON.stringify(engine.containers));
    else if (pathname === '/events' && !refuseEvents) {
      response.flushHeaders();
      engine.listeners.add(response);
    } else response.end('{}');
  });
  await listen(t, server, { path: engine.path });
  engine.tell = () => engine.listeners.forEach((listener) => listener.write('{"Action":"start"}\n'));
  return engine;
}
