import { EventEmitter } from 'node:events';
import { darwinPorts } from './darwin.js';
import { LinuxPorts } from './linux.js';
import { isAlive } from '../processes/is-alive.js';

const SOURCES = { linux: () => new LinuxPorts(), darwin: () => darwinPorts };

const CLOSE_INTERVAL = 250;
const CLOSE_LOOK = 6000;

/** One entry for each port: a server that listens on several addresses is one server to the user. */
function byPort(sockets) {
  const ports = new Map();
  for (const { address, port, uid, process } of sockets) {
    const key = `${port} ${process?.pid ?? `uid ${uid}`}`;
    const entry = ports.get(key) ?? { port, uid, addresses: [], process };
    if (!entry.addresses.includes(address)) entry.addresses.push(address);
    ports.set(key, entry);
  }
  return [...ports.values()].sort((one, other) => one.port - other.port);
}

/**
 * Knows every listening TCP port with its process. The list of sockets is looked at often, for it costs little; the
 * processes are looked up only when that list has changed. Emits "change".
 */
export class PortWatcher extends EventEmitter {
  #source;
  #timer = null;
  #close = null;
  #closeUntil = 0;
  #fingerprint = null;
  #unresolved = 0;
  #looking = null;
  #ports = [];

  constructor(source = SOURCES[process.platform]?.()) {
    super();
    this.#source = source;
  }

  /** Every entry has `port`, `addresses`, `uid` and `process` ({ pid, group, name, command, folder } or null). */
  get ports() {
    return this.#ports;
  }

  start() {
    if (!this.#source || this.#timer) return;
    this.#timer = setInterval(() => this.look(), this.#source.interval);
    this.look();
  }

  close() {
    clearInterval(this.#timer);
    clearTimeout(this.#close);
    this.#timer = null;
    this.#closeUntil = 0;
  }

  /** Looks more often for a while: a program has just been started and is expected to open its port. */
  lookClosely() {
    this.#closeUntil = performance.now() + CLOSE_LOOK;
    if (!this.#close) this.#lookAgain();
  }

  #lookAgain() {
    this.#close = setTimeout(async () => {
      await this.look();
      this.#close = null;
      if (performance.now() < this.#closeUntil) this.#lookAgain();
    }, CLOSE_INTERVAL);
  }

  /** Looks now; fulfilled when the list is up to date. */
  look() {
    this.#looking ??= this.#look()
      .catch((error) => console.error(`Ports could not be read: ${error.message}`))
      .finally(() => {
        this.#looking = null;
      });
    return this.#looking;
  }

  async #look() {
    const sockets = await this.#source.sockets();
    const fingerprint = sockets
      .map(({ address, port, inode }) => `${address} ${port} ${inode}`)
      .sort()
      .join('\n');
    const holdersLive = this.#ports.every(({ process: holder }) => !holder || isAlive(holder.pid));
    // A socket of the user's own with no process was caught while it changed hands; it is looked up a few times more.
    if (fingerprint === this.#fingerprint && holdersLive && this.#unresolved === 0) return;
    const isNew = fingerprint !== this.#fingerprint;
    this.#fingerprint = fingerprint;

    const ports = byPort(await this.#source.withProcesses(sockets));
    const orphans = ports.some(({ uid, process: holder }) => !holder && uid === process.getuid());
    if (!orphans) this.#unresolved = 0;
    else this.#unresolved = isNew ? 3 : Math.max(0, this.#unresolved - 1);

    if (JSON.stringify(ports) === JSON.stringify(this.#ports)) return;
    this.#ports = ports;
    this.emit('change');
  }
}
