import { request } from 'node:http';
import { access } from 'node:fs/promises';
import { join } from 'node:path';

const TIMEOUT = 2000;
const LONGEST_ANSWER = 16 * 1024 * 1024;
const EVENTS = [
  'create',
  'start',
  'restart',
  'die',
  'stop',
  'kill',
  'pause',
  'unpause',
  'rename',
  'destroy',
  'health_status',
];

/** Where a container engine's socket may be, the user's own choice first. */
export function dockerSockets({ home, environment = process.env }) {
  const runtime = environment.XDG_RUNTIME_DIR;
  const chosen = /^unix:\/\/(\/.*)$/.exec(environment.DOCKER_HOST ?? '')?.[1];
  if (chosen) return [chosen];
  return [
    '/var/run/docker.sock',
    join(home, '.docker/run/docker.sock'),
    join(home, '.orbstack/run/docker.sock'),
    join(home, '.colima/default/docker.sock'),
    ...(runtime ? [join(runtime, 'docker.sock'), join(runtime, 'podman/podman.sock')] : []),
  ];
}

function getJson(socketPath, path) {
  return new Promise((resolve, reject) => {
    const call = request({ socketPath, path, headers: { Host: 'localhost' } }, (response) => {
      const chunks = [];
      let length = 0;
      response.on('data', (chunk) => {
        chunks.push(chunk);
        length += chunk.length;
        if (length > LONGEST_ANSWER) call.destroy(new Error('its answer is too long'));
      });
      response.on('error', reject);
      response.on('end', () => {
        try {
          if (response.statusCode !== 200) throw new Error(`it answered with status ${response.statusCode}`);
          resolve(JSON.parse(Buffer.concat(chunks).toString('utf8')));
        } catch (error) {
          reject(error);
        }
      });
    });
    const timer = setTimeout(() => call.destroy(new Error('it did not answer in time')), TIMEOUT);
    call.on('close', () => clearTimeout(timer));
    call.on('error', reject);
    call.end();
  });
}

function container(entry) {
  const labels = entry.Labels ?? {};
  const ports = (entry.Ports ?? [])
    .filter((port) => port.PublicPort)
    .map((port) => ({ port: port.PublicPort, inside: port.PrivatePort }));
  const unique = new Map(ports.map((mapping) => [`${mapping.port}:${mapping.inside}`, mapping]));
  return {
    id: String(entry.Id).slice(0, 12),
    name: String(entry.Names?.[0] ?? entry.Id).replace(/^\//, ''),
    image: String(entry.Image ?? ''),
    state: String(entry.State ?? 'unknown'),
    status: String(entry.Status ?? ''),
    ports: [...unique.values()].sort((one, other) => one.port - other.port),
    composeProject: labels['com.docker.compose.project'] ?? null,
    folder: labels['com.docker.compose.project.working_dir'] ?? null,
  };
}

/**
 * The container engine behind the first socket that is there: { available: false, reason } or { available: true,
 * socket, version, containers }. The reason is null when there is no socket at all.
 * @returns {Promise<any>}
 */
export async function probeDocker(sockets) {
  let reason = null;
  for (const socket of sockets) {
    if (
      !(await access(socket).then(
        () => true,
        () => false,
      ))
    )
      continue;
    try {
      const [version, containers] = await Promise.all([
        getJson(socket, '/version'),
        getJson(socket, '/containers/json?all=1'),
      ]);
      const sorted = containers.map(container).sort((one, other) => one.name.localeCompare(other.name));
      return { available: true, socket, version: String(version.Version ?? ''), containers: sorted };
    } catch (error) {
      const refused = error.code === 'EACCES' || error.code === 'EPERM';
      reason ??= refused ? `You are not allowed to use ${socket}.` : `${socket}: ${describe(error)}.`;
    }
  }
  return { available: false, reason };
}

function describe(error) {
  return error.code === 'ECONNREFUSED' ? 'nothing answers there' : error.message;
}

/** Calls `onEvent` when a container changes and `onEnd` when the engine goes away. Returns a function that ends it. */
export function followDocker(socketPath, onEvent, onEnd) {
  const filters = encodeURIComponent(JSON.stringify({ type: ['container'], event: EVENTS }));
  const call = request(
    { socketPath, path: `/events?filters=${filters}`, headers: { Host: 'localhost' } },
    (response) => {
      response.on('data', onEvent);
      response.on('error', () => {});
      response.on('close', onEnd);
    },
  );
  call.on('error', onEnd);
  call.end();
  return () => call.destroy();
}
