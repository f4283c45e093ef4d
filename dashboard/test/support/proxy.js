// A proxy between page and server that loses, delays and repeats what it is told to.
import { createServer, request as ask } from 'node:http';
import { setTimeout as wait } from 'node:timers/promises';
import { listen } from './engine.js';

function forward(call, port, body) {
  const own = `localhost:${port}`;
  const headers = { ...call.headers, host: own };
  if (headers.origin) headers.origin = `http://${own}`;
  return new Promise((resolve, reject) => {
    const onward = ask({ port, host: '127.0.0.1', method: call.method, path: call.url, headers }, resolve);
    onward.on('error', reject);
    onward.end(body);
  });
}

async function collect(stream) {
  const chunks = [];
  for await (const chunk of stream) chunks.push(chunk);
  return Buffer.concat(chunks);
}

/**
 * A proxy to the server at `port`. For each request it does what `proxy.treat(path)` says at that time: { delay } the
 * answer by milliseconds, never answer at all ({ hang }), break the connection off before the answer ({ drop }) or within
 * it ({ cut }), let nothing through after the head ({ mute }), ask twice and give the second answer ({ repeat }), send each piece { twice }, or give
 * the answer before once more ({ old }). `proxy.cutAll()` breaks every open connection.
 */
export async function proxyTo(t, port) {
  const proxy = { asked: [], treat: /** @type {(path: string) => Record<string, any>} */ (() => ({})) };
  const sockets = new Set();
  const answers = new Map();

  async function pass(call, response) {
    const treatment = proxy.treat(call.url) ?? {};
    proxy.asked.push(call.url);
    const body = await collect(call);
    if (treatment.hang) return;
    if (treatment.drop) {
      call.socket.destroy();
      return;
    }
    if (treatment.repeat) await collect(await forward(call, port, body));
    const answer = await forward(call, port, body);
    if (treatment.delay) await wait(treatment.delay);
    response.writeHead(answer.statusCode, { ...answer.headers, connection: 'close' });
    response.on('close', () => answer.destroy());
    if (treatment.old && answers.has(call.url)) {
      response.removeHeader('content-length');
      response.end(answers.get(call.url));
      return;
    }
    const chunks = [];
    for await (const chunk of answer) {
      chunks.push(chunk);
      if (treatment.mute) continue;
      response.write(treatment.cut ? chunk.subarray(0, chunk.length / 2) : chunk);
      if (treatment.twice) response.write(chunk);
      if (treatment.cut) call.socket.destroy();
    }
    answers.set(call.url, Buffer.concat(chunks));
    response.end();
  }

  const server = createServer((call, response) => pass(call, response).catch(() => response.destroy()));
  server.on('connection', (socket) => {
    sockets.add(socket);
    socket.on('close', () => sockets.delete(socket));
  });
  const address = await listen(t, server);
  proxy.address = `http://localhost:${address.port}`;
  proxy.cutAll = () => {
    for (const socket of sockets) socket.destroy();
  };
  return proxy;
}
