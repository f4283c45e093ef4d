import { EventEmitter } from 'node:events';
import { followDocker, probeDocker } from './docker.js';
import { engineTargets } from './engines.js';
import { postgresSockets, postgresVersion, probePostgres } from './postgres.js';
import { probeRedis } from './redis.js';

const INTERVAL = 30_000;
const SETTLE = 300;
const FIRST_PAUSE = 5000;
const LONGEST_PAUSE = 600_000;
const ATTEMPTS = 3;

const KINDS = {
  postgres: {
    usualPort: (port) => port >= 5432 && port <= 5439,
    processName: /^(postgres|postmaster)/,
    insidePort: 5432,
  },
  redis: {
    usualPort: (port) => port >= 6379 && port <= 6389,
    processName: /^(redis|valkey|keydb)-server/,
    insidePort: 6379,
  },
};

function loopback(addresses) {
  if (addresses.some((address) => address === '0.0.0.0' || address === '127.0.0.1' || address === '::'))
    return '127.0.0.1';
  return addresses.includes('::1') ? '::1' : addresses[0];
}

/**
 * Knows the local services: PostgreSQL and Redis servers that answered a probe, and the container engine. Probes when
 * the listening ports change, when the engine tells of an event, and every half minute. Emits "change".
 */
export class Services extends EventEmitter {
  #ports;
  #targets;
  #postgresFolders;
  #timer = null;
  #soon = null;
  #busy = null;
  #again = false;
  #unfollow = null;
  #followAgainAt = 0;
  #pause = FIRST_PAUSE;
  #asked = new Map(); // What PostgreSQL servers have answered, by port and process.
  #closed = false;
  #lastCandidates = '';
  /** @type {import('../../types/api.js').Services} */
  value = { ready: false, postgres: [], redis: [], docker: { available: false, reason: null, containers: [] } };

  constructor({ home, ports, targets = () => engineTargets({ home }), postgresFolders = undefined }) {
    super();
    this.#ports = ports;
    this.#targets = targets;
    this.#postgresFolders = postgresFolders;
  }

  start() {
    this.#ports.on('change', () => {
      // Most ports that open and close are none of these services'.
      const candidates = this.#candidatePorts();
      if (candidates !== this.#lastCandidates) this.lookSoon();
    });
    this.#timer = setInterval(() => this.look(), INTERVAL);
    this.lookSoon();
  }

  close() {
    this.#closed = true;
    clearInterval(this.#timer);
    clearTimeout(this.#soon);
    this.#unfollow?.();
  }

  lookSoon() {
    if (this.#closed) return;
    this.#soon ??= setTimeout(() => {
      this.#soon = null;
      this.look();
    }, SETTLE);
  }

  /** Probes now; a call during a probe makes another one follow it. */
  async look() {
    if (this.#busy) {
      this.#again = true;
      return this.#busy;
    }
    this.#busy = this.#look().catch((error) => console.error(`Services could not be probed: ${error.message}`));
    await this.#busy;
    this.#busy = null;
    if (this.#again && !this.#closed) {
      this.#again = false;
      return this.look();
    }
    return undefined;
  }

  async #look() {
    this.#lastCandidates = this.#candidatePorts();
    const docker = await probeDocker(this.#targets());
    const [postgres, redis] = await Promise.all([this.#lookForPostgres(docker), this.#lookForRedis(docker)]);
    if (this.#closed) return;
    this.#followEngine(docker);
    // How the engine is reached is nobody else's: there may be keys in it.
    const value = { ready: true, postgres, redis, docker: { ...docker } };
    delete value.docker.target;
    if (JSON.stringify(value) === JSON.stringify(this.value)) return;
    this.value = value;
    this.emit('change');
  }

  /** The ports where a service of `kind` may listen: its usual ones, its program's, and those of its containers. */
  #candidates(kind, docker) {
    const { usualPort, processName, insidePort } = KINDS[kind];
    const published = new Set(
      (docker.containers ?? [])
        .flatMap(({ ports }) => ports)
        .filter(({ inside }) => inside === insidePort)
        .map(({ port }) => port),
    );
    const candidates = new Map();
    for (const entry of this.#ports.ports) {
      const likely = usualPort(entry.port) || published.has(entry.port) || processName.test(entry.process?.name ?? '');
      if (likely && !candidates.has(entry.port)) candidates.set(entry.port, entry);
    }
    return [...candidates.values()];
  }

  #candidatePorts() {
    const kinds = Object.keys(KINDS).map((kind) => this.#candidates(kind, this.value.docker));
    return kinds
      .flat()
      .map(({ port, process }) => `${port} ${process?.pid}`)
      .join();
  }

  async #lookForPostgres(docker) {
    /** @type {{ port: number, process: any, target: any }[]} */
    const candidates = this.#candidates('postgres', docker).map((entry) => ({
      port: entry.port,
      process: entry.process,
      target: { port: entry.port, host: loopback(entry.addresses) },
    }));
    const listening = new Set(candidates.map(({ port }) => port));
    for (const [port, path] of await postgresSockets(this.#postgresFolders)) {
      if (!listening.has(port)) candidates.push({ port, process: null, target: { path } });
    }
    const before = this.#asked;
    this.#asked = new Map();
    const servers = await Promise.all(
      candidates.map(async ({ port, process, target }) => {
        const answer = await this.#askPostgres(target, `${port} ${process?.pid}`, before);
        if (!answer) return null;
        return { port, socket: target.path ?? null, tls: answer.tls, version: await postgresVersion(process) };
      }),
    );
    return servers.filter(Boolean).sort((one, other) => one.port - other.port);
  }

  /** Asks a server once: each question is a failed connection in its log. One that says nothing may be starting yet. */
  async #askPostgres(target, key, before) {
    const known = before.get(key) ?? { answer: null, attempts: 0 };
    const isSettled = known.answer || known.attempts >= ATTEMPTS;
    const now = isSettled ? known : { answer: await probePostgres(target), attempts: known.attempts + 1 };
    this.#asked.set(key, now);
    return now.answer;
  }

  async #lookForRedis(docker) {
    const servers = await Promise.all(
      this.#candidates('redis', docker).map(async ({ port, addresses }) => {
        const answer = await probeRedis({ port, host: loopback(addresses) });
        return answer && { port, ...answer };
      }),
    );
    return servers.filter(Boolean).sort((one, other) => one.port - other.port);
  }

  #followEngine(docker) {
    if (!docker.available || this.#unfollow || performance.now() < this.#followAgainAt) return;
    const ended = (wasGranted) => {
      this.#unfollow = null;
      if (wasGranted) {
        this.#pause = FIRST_PAUSE;
        this.lookSoon();
        return;
      }
      // One that will not tell of its events is asked for its containers every half minute, like everything else.
      this.#followAgainAt = performance.now() + this.#pause;
      this.#pause = Math.min(2 * this.#pause, LONGEST_PAUSE);
    };
    this.#unfollow = followDocker(docker.target, () => this.lookSoon(), ended);
  }
}
