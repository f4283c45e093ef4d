import { request } from 'node:http';
import { request as requestSafely } from 'node:https';
import { access } from 'node:fs/promises';
import { nameOf } from './engines.js';

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

/** A request to the engine at `target`, as engines.js describes one. */
function ask({ isSafe, ...where }, path, onResponse) {
  return (isSafe ? requestSafely : request)({ ...where, path, headers: { Host: 'localhost' } }, onResponse);
}

function getJson(target, path) {
  return new Promise((resolve, reject) => {
    const call = ask(target, path, (response) => {
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
    .filter((port) => port.PublicPort && port.Type !== 'udp')
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
 * The container engine at the first of `targets` (as engines.js describes them) that answers: { available: false, reason }
 * or { available: true, target, socket, version, containers }, where `socket` is how the target is called. The reason is
 * null when there is none at all.
 * @returns {Promise<any>}
 */
export async function probeDocker(targets) {
  let reason = null;
  for (const target of targets) {
    const { socketPath, problem } = target;
    const called = nameOf(target);
    if (problem) reason ??= problem;
    if (
      problem ||
      (socketPath &&
        !(await access(socketPath).then(
          () => true,
          () => false,
        )))
    )
      continue;
    try {
      const [version, containers] = await Promise.all([
        getJson(target, '/version'),
        getJson(target, '/containers/json?all=1'),
      ]);
      const sorted = containers.map(container).sort((one, other) => one.name.localeCompare(other.name));
      return { available: true, target, socket: called, version: String(version.Version ?? ''), containers: sorted };
    } catch (error) {
      const refused = error.code === 'EACCES' || error.code === 'EPERM';
      reason ??= refused ? `You are not allowed to use ${called}.` : `${called}: ${describe(error)}.`;
    }
  }
  return { available: false, reason };
}

function describe(error) {
  return error.code === 'ECONNREFUSED' ? 'nothing answers there' : error.message;
}

/**
 * Calls `onEvent` when a container changes, and `onEnd` when the engine tells no more of that, with whether it ever did.
 * Returns a function that ends it.
 */
export function followDocker(target, onEvent, onEnd) {
  const filters = encodeURIComponent(JSON.stringify({ type: ['container'], event: EVENTS }));
  const call = ask(target, `/events?filters=${filters}`, (response) => {
    const isGranted = response.statusCode === 200;
    response.on('data', isGranted ? onEvent : () => {});
    response.on('error', () => {});
    response.on('close', () => onEnd(isGranted));
  });
  call.on('error', () => onEnd(false));
  call.end();
  return () => call.destroy();
}
