// Where a container engine may be: { socketPath }, { host, port } or, with TLS, { host, port, isSafe, ca, cert, key }; or
// { problem } where the user has chosen what cannot be asked from here.
import { createHash } from 'node:crypto';
import { readdirSync, readFileSync } from 'node:fs';
import { join } from 'node:path';

/** How a target is called when it is spoken of. */
export const nameOf = ({ socketPath, host, port }) => socketPath ?? `${host}:${port}`;

function readOr(path, otherwise) {
  try {
    return readFileSync(path, 'utf8');
  } catch {
    return otherwise;
  }
}

function readJson(path) {
  try {
    return JSON.parse(readOr(path, '{}')) ?? {};
  } catch {
    return {};
  }
}

/** The files of a TLS client in `folder`, as the engines' own clients call them. */
function certificates(folder) {
  const [ca, cert, key] = ['ca.pem', 'cert.pem', 'key.pem'].map((name) => readOr(join(folder, name), undefined));
  return { isSafe: true, ca, cert, key };
}

/**
 * @typedef {{ socketPath?: string, host?: string, port?: number, isSafe?: boolean, ca?: string, cert?: string,
 *   key?: string, problem?: string }} Target
 */

/**
 * The target that an address like those of DOCKER_HOST means; `tls` is the folder with certificates, if it
 * needs them.
 * @returns {Target}
 */
export function targetOf(address, tls = null) {
  const path = /^unix:\/\/(\/.*)$/.exec(address)?.[1];
  if (path) return { socketPath: path };
  const problem = { problem: `The container engine at ${address.slice(0, 200)} cannot be asked from here.` };
  if (!/^(tcp|https?):\/\//.test(address)) return problem;
  try {
    const isSafe = tls !== null || address.startsWith('https:');
    const { hostname, port } = new URL(address.replace(/^\w+:/, 'http:'));
    const host = hostname.replace(/^\[|\]$/g, '');
    return { host, port: Number(port) || (isSafe ? 2376 : 2375), ...(isSafe ? certificates(tls ?? '') : {}) };
  } catch {
    return problem;
  }
}

/** The engine of the context that the user has chosen with "docker context use"; undefined without one. */
function contextTarget(home, environment) {
  const folder = environment.DOCKER_CONFIG || join(home, '.docker');
  const name = environment.DOCKER_CONTEXT || readJson(join(folder, 'config.json')).currentContext;
  if (typeof name !== 'string' || name === '' || name === 'default') return undefined;
  const id = createHash('sha256').update(name).digest('hex');
  const endpoint = readJson(join(folder, 'contexts/meta', id, 'meta.json')).Endpoints?.docker;
  if (typeof endpoint?.Host !== 'string') return undefined;
  const tls = join(folder, 'contexts/tls', id, 'docker');
  return targetOf(endpoint.Host, readOr(join(tls, 'ca.pem'), null) === null ? null : tls);
}

function colimaProfiles(home) {
  try {
    return readdirSync(join(home, '.colima'))
      .filter((name) => !name.startsWith('_'))
      .sort();
  } catch {
    return [];
  }
}

/**
 * Where to ask for a container engine, the user's own choice first and alone.
 * @param {{ home: string, environment?: Record<string, string | undefined> }} surroundings
 * @returns {Target[]}
 */
export function engineTargets({ home, environment = process.env }) {
  const host = environment.DOCKER_HOST || environment.CONTAINER_HOST;
  if (host) {
    const folder = environment.DOCKER_CERT_PATH || environment.DOCKER_CONFIG || join(home, '.docker');
    return [targetOf(host, environment.DOCKER_TLS_VERIFY ? folder : null)];
  }
  const chosen = contextTarget(home, environment);
  if (chosen) return [chosen];
  const runtime = environment.XDG_RUNTIME_DIR;
  const sockets = [
    '/var/run/docker.sock',
    ...['.docker/run', '.docker/desktop', '.orbstack/run', '.rd'].map((folder) => join(home, folder, 'docker.sock')),
    ...colimaProfiles(home).map((profile) => join(home, '.colima', profile, 'docker.sock')),
    join(home, '.config/colima/default/docker.sock'),
    join(home, '.lima/docker/sock/docker.sock'),
    ...(runtime ? [join(runtime, 'docker.sock'), join(runtime, 'podman/podman.sock')] : []),
    join(home, '.local/share/containers/podman/machine/podman.sock'),
    '/run/podman/podman.sock',
  ];
  return sockets.map((socketPath) => ({ socketPath }));
}
