import { readdirSync, readFileSync } from 'node:fs';
import { readdir, readFile, readlink } from 'node:fs/promises';
import { setImmediate as nextTurn } from 'node:timers/promises';
import { isAlive } from '../is-alive.js';

const LISTEN = '0A';
const ATTEMPTS = 4;

function decodeAddress(hex) {
  // Each group of 32 bits is in the machine's own byte order, which is little-endian wherever this runs.
  const bytes = hex.match(/.{8}/g).flatMap((group) => group.match(/../g).reverse()).map((byte) => parseInt(byte, 16));
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
    sockets.push({ address: decodeAddress(address), port: parseInt(port, 16), uid: Number(fields[7]), inode: fields[9] });
  }
  return sockets;
}

// For files of the kernel, which take no time: the waiting for a thread would cost several times the reading.
function readAtOnce(path) {
  try {
    return readFileSync(path, 'latin1');
  } catch {
    return '';
  }
}

const readOrEmpty = (path) => readFile(path, 'latin1').catch(() => '');

/** The inodes among `inodes` that are sockets of process `pid`; none when it has ended or is another user's. */
async function socketsOf(pid, inodes) {
  let descriptors;
  try {
    descriptors = await readdir(`/proc/${pid}/fd`);
  } catch {
    return [];
  }
  const links = await Promise.all(descriptors.map((name) => readlink(`/proc/${pid}/fd/${name}`).catch(() => '')));
  return links.filter((link) => link.startsWith('socket:[')).map((link) => link.slice(8, -1)).filter((inode) => inodes.has(inode));
}

/** State, parent and process group in the text of /proc/<pid>/stat; the name before them may hold anything. */
export function parseStat(text) {
  const fields = text.slice(text.lastIndexOf(')') + 2).split(' ');
  return { state: fields[0], parent: Number(fields[1]), group: Number(fields[2]) };
}

/** Whether a process of the group lives. One that has ended and waits to be noticed by its parent does not. */
export function groupLives(group) {
  return readdirSync('/proc').filter((name) => /^\d+$/.test(name)).map((name) => parseStat(readAtOnce(`/proc/${name}/stat`)))
    .some((process) => process.group === group && !'ZX'.includes(process.state));
}

async function describe(pid) {
  const directory = `/proc/${pid}`;
  const [commandLine, name, stat, folder] = await Promise.all([
    readFile(`${directory}/cmdline`, 'utf8').catch(() => ''),
    readFile(`${directory}/comm`, 'utf8').catch(() => ''),
    readOrEmpty(`${directory}/stat`),
    readlink(`${directory}/cwd`).catch(() => null),
  ]);
  const { parent, group } = parseStat(stat);
  return { pid, parent, group, name: name.trim(), command: commandLine.split('\0').join(' ').trim(), folder };
}

/** Of several processes that share a socket, the one that opened it: the last one up the line of parents that has it. */
async function opener(pid, inode) {
  const found = await describe(pid);
  const inherited = found.parent > 1 && (await socketsOf(found.parent, new Set([inode]))).length > 0;
  return inherited ? opener(found.parent, inode) : found;
}

/** From inode to process. The youngest processes are looked at first: they are the likely owners of a new socket. */
async function findProcesses(inodes) {
  const wanted = new Set(inodes);
  const found = new Map();
  const pids = (await readdir('/proc')).filter((name) => /^\d+$/.test(name)).map(Number).sort((one, other) => other - one);
  for (const [index, pid] of pids.entries()) {
    if (wanted.size === 0) break;
    if (index % 32 === 31) await nextTurn();
    for (const inode of new Set(await socketsOf(pid, wanted))) {
      wanted.delete(inode);
      found.set(inode, await opener(pid, inode));
    }
  }
  return found;
}

/** The listening sockets of this machine, from /proc. What is known of a socket is kept for as long as its process lives. */
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
    const unknown = sockets.filter(({ uid, inode }) => (uid === user || user === 0) && this.#mustBeFound(inode)).map(({ inode }) => inode);
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
