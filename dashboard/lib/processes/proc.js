// What Linux tells of its processes, in /proc.
import { readdirSync, readFileSync } from 'node:fs';
import { readdir, readFile, readlink } from 'node:fs/promises';
import { setImmediate as nextTurn } from 'node:timers/promises';

// For files of the kernel, which take no time: the waiting for a thread would cost several times the reading.
export function readAtOnce(path) {
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
  return links
    .filter((link) => link.startsWith('socket:['))
    .map((link) => link.slice(8, -1))
    .filter((inode) => inodes.has(inode));
}

/** State, parent and process group in the text of /proc/<pid>/stat; the name before them may hold anything. */
export function parseStat(text) {
  const fields = text.slice(text.lastIndexOf(')') + 2).split(' ');
  return { state: fields[0], parent: Number(fields[1]), group: Number(fields[2]) };
}

/** The text of a process's stat file; empty when the process is gone. */
function statOf(pid) {
  try {
    return readFileSync(`/proc/${pid}/stat`, 'latin1');
  } catch (error) {
    if (error.code === 'ENOENT' || error.code === 'ESRCH') return '';
    throw error;
  }
}

/**
 * The processes of a group that live, each { pid, name }. One that has ended and waits to be noticed by its parent does
 * not. Rejected when the system does not tell.
 */
export async function groupMembers(group) {
  const members = [];
  for (const pid of readdirSync('/proc').filter((name) => /^\d+$/.test(name))) {
    const text = statOf(pid);
    const stat = parseStat(text);
    const name = text.slice(text.indexOf('(') + 1, text.lastIndexOf(')'));
    if (stat.group === group && !'ZX'.includes(stat.state)) members.push({ pid: Number(pid), name });
  }
  return members;
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

/** Of several processes that share a socket, the opener: the last one up the line of parents that has it. */
async function opener(pid, inode) {
  const found = await describe(pid);
  const inherited = found.parent > 1 && (await socketsOf(found.parent, new Set([inode]))).length > 0;
  return inherited ? opener(found.parent, inode) : found;
}

/**
 * The processes that opened the sockets, by the sockets' inodes. The youngest processes are looked at first: they are the
 * likely owners of a new socket.
 */
export async function findProcesses(inodes) {
  const wanted = new Set(inodes);
  const found = new Map();
  const pids = (await readdir('/proc'))
    .filter((name) => /^\d+$/.test(name))
    .map(Number)
    .sort((one, other) => other - one);
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
