import { isAlive } from '../processes/is-alive.js';
import { findProcesses, readAtOnce } from '../processes/proc.js';

const LISTEN = '0A';
const ATTEMPTS = 4;

function decodeAddress(hex) {
  // Each group of 32 bits is in the machine's own byte order, which is little-endian wherever this runs.
  const bytes = hex
    .match(/.{8}/g)
    .flatMap((group) => group.match(/../g).reverse())
    .map((byte) => parseInt(byte, 16));
  if (bytes.length === 4) return bytes.join('.');
  if (bytes.every((byte) => byte === 0)) return '::';
  if (bytes.slice(0, 10).every((byte) => byte === 0) && bytes[10] === 255) return bytes.slice(12).join('.');
  const groups = [];
  for (let at = 0; at < 16; at += 2) groups.push(((bytes[at] << 8) | bytes[at + 1]).toString(16));
  return new URL(`http://[${groups.join(':')}]/`).hostname.slice(1, -1); // In its shortest form.
}

/** The listening sockets in the text of /proc/net/tcp or tcp6: { address, port, uid, inode }. */
export function parseListening(text) {
  const sockets = [];
  for (const line of text.split('\n')) {
    // Most lines are connections; the state is looked at before the line is taken apart.
    if (!line.includes(` ${LISTEN} `)) continue;
    const fields = line.trim().split(/\s+/);
    if (fields[3] !== LISTEN) continue;
    const [address, port] = fields[1].split(':');
    sockets.push({
      address: decodeAddress(address),
      port: parseInt(port, 16),
      uid: Number(fields[7]),
      inode: fields[9],
    });
  }
  return sockets;
}

/** The listening sockets of this machine, from /proc. What is known of one is kept for as long as its process lives. */
export class LinuxPorts {
  // The kernel walks its whole table of connections at each look, which takes milliseconds where there is much memory.
  interval = 3000;
  #known = new Map();

  /** The listening sockets with no process yet. Cheap: two small files. */
  async sockets() {
    return ['/proc/net/tcp', '/proc/net/tcp6'].map(readAtOnce).flatMap(parseListening);
  }

  /** Adds to each socket its process, or null when that is not the user's to know. */
  async withProcesses(sockets) {
    const user = process.getuid();
    const unknown = sockets
      .filter(({ uid, inode }) => (uid === user || user === 0) && this.#mustBeFound(inode))
      .map(({ inode }) => inode);
    const found = unknown.length > 0 ? await findProcesses(unknown) : new Map();
    const known = new Map();
    for (const { inode } of sockets) {
      const before = this.#known.get(inode);
      if (found.has(inode)) known.set(inode, { process: found.get(inode), attempts: 0 });
      else if (unknown.includes(inode)) known.set(inode, { process: null, attempts: (before?.attempts ?? 0) + 1 });
      else if (before) known.set(inode, before);
    }
    this.#known = known;
    return sockets.map((socket) => ({ ...socket, process: known.get(socket.inode)?.process ?? null }));
  }

  /** A process in another container is never found, so there is an end to looking for it. */
  #mustBeFound(inode) {
    const known = this.#known.get(inode);
    if (!known) return true;
    return known.process ? !isAlive(known.process.pid) : known.attempts < ATTEMPTS;
  }
}
