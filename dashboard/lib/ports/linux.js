import { readdir, readFile, readlink } from 'node:fs/promises';
import { setImmediate as nextTurn } from 'node:timers/promises';

const LISTEN = '0A';

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

const readOrEmpty = (path) => readFile(path, 'latin1').catch(() => '');

async function holdersOf(inodes) {
  const holders = new Map();
  const pids = (await readdir('/proc')).filter((name) => /^\d+$/.test(name));
  for (const [index, pid] of pids.entries()) {
    if (index % 32 === 31) await nextTurn();
    let descriptors;
    try {
      descriptors = await readdir(`/proc/${pid}/fd`);
    } catch {
      continue; // Another user's process, or one that has just ended.
    }
    const links = await Promise.all(descriptors.map((name) => readlink(`/proc/${pid}/fd/${name}`).catch(() => '')));
    for (const link of links) {
      if (!link.startsWith('socket:[')) continue;
      const inode = link.slice(8, -1);
      if (inodes.has(inode)) holders.set(inode, (holders.get(inode) ?? new Set()).add(Number(pid)));
    }
  }
  return holders;
}

/** The parent and the process group in the text of /proc/<pid>/stat; the name before them may hold anything. */
export function parseStat(text) {
  const fields = text.slice(text.lastIndexOf(')') + 2).split(' ');
  return { parent: Number(fields[1]), group: Number(fields[2]) };
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

/** Of several processes that share a socket, the one that opened it: the one whose parent does not hold it too. */
function owner(pids, processes) {
  const sorted = [...pids].sort((one, other) => one - other);
  return sorted.find((pid) => !pids.has(processes.get(pid)?.parent)) ?? sorted[0];
}

export const linuxPorts = {
  interval: 2000,

  /** The listening sockets with no process yet. Cheap: two small files. */
  async sockets() {
    const texts = await Promise.all([readOrEmpty('/proc/net/tcp'), readOrEmpty('/proc/net/tcp6')]);
    return texts.flatMap(parseListening);
  },

  /** Adds to each socket its process, or null when that is not the user's to know. */
  async withProcesses(sockets) {
    const holders = await holdersOf(new Set(sockets.map((socket) => socket.inode)));
    const pids = new Set([...holders.values()].flatMap((set) => [...set]));
    const processes = new Map(await Promise.all([...pids].map(async (pid) => [pid, await describe(pid)])));
    return sockets.map((socket) => {
      const holding = holders.get(socket.inode);
      return { ...socket, process: holding ? processes.get(owner(holding, processes)) : null };
    });
  },
};
