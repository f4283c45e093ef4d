import { execFile, spawn } from 'node:child_process';
import { once } from 'node:events';
import { promisify } from 'node:util';
import { isAlive } from './is-alive.js';
import { groupMembers } from './proc.js';

const LOOK_INTERVAL = 50;

// The first process of the group: it becomes the command once it is told to begin. By then the guard is there; when the
// dashboard ends before that, nothing begins.
const LEADER = 'read -r begin <&3 && exec 3<&- "$@"';

// Waits for the end of a pipe that the dashboard holds: when the dashboard ends, by whatever means, the guard ends the
// group. It is not in the group, so the group is empty when the command and all that it started have ended.
const GUARD = `
trap '' TERM INT HUP
read -r released && exit
kill -TERM "-$1" 2>/dev/null
left=$2
while [ "$left" -gt 0 ] && kill -0 "-$1" 2>/dev/null; do
  sleep 1
  left=$((left - 1))
done
kill -KILL "-$1" 2>/dev/null
`;

/** Starts a program; rejected, and with nothing left behind, when the system does not grant one. */
async function spawned(file, parameters, options) {
  const child = spawn(file, parameters, { detached: true, ...options });
  // Without free descriptors there is no stream at all.
  for (const stream of child.stdio ?? []) stream?.on('error', () => {});
  await once(child, 'spawn');
  child.on('error', () => {});
  return child;
}

/** The processes of a group that live, each { pid, name }. */
async function membersOf(group) {
  if (process.platform === 'linux') return groupMembers(group);
  const { stdout } = await promisify(execFile)('/bin/ps', ['-A', '-o', 'pid=,pgid=,stat=,comm=']);
  const lines = stdout.split('\n').map((line) => /^\s*(\d+)\s+(\d+)\s+(\S+)\s+(.*)$/.exec(line));
  return lines
    .filter((line) => line && Number(line[2]) === group && !line[3].startsWith('Z'))
    .map(([, pid, , , name]) => ({ pid: Number(pid), name: name.slice(name.lastIndexOf('/') + 1) }));
}

/** A command and all that it starts, in a process group of its own that does not outlive this process. */
export class ProcessGroup {
  #guard;

  /** The process that runs the command; its standard output and standard error are pipes. */
  leader;

  constructor(leader, guard) {
    this.leader = leader;
    this.#guard = guard;
  }

  /**
   * Starts `command` in `folder`. When the dashboard ends without ending it, it has `patience` seconds to end by itself.
   * Rejected with the system's error when it cannot be started.
   */
  static async start(command, { folder, environment, patience }) {
    const leader = await spawned('/bin/sh', ['-c', LEADER, 'sh', '/bin/sh', '-c', command], {
      cwd: folder,
      env: environment,
      stdio: ['ignore', 'pipe', 'pipe', 'pipe'],
    });
    try {
      const guard = await spawned('/bin/sh', ['-c', GUARD, 'sh', String(leader.pid), String(patience)], {
        cwd: '/',
        stdio: ['pipe', 'ignore', 'ignore'],
      });
      return new ProcessGroup(leader, guard);
    } catch (error) {
      leader.kill('SIGKILL');
      throw error;
    }
  }

  /** Lets the command begin. */
  begin() {
    this.leader.stdio[3].end('begin\n');
  }

  get pid() {
    return this.leader.pid;
  }

  signal(name) {
    try {
      process.kill(-this.pid, name);
    } catch {
      // Nothing of it is left.
    }
  }

  /** The processes of it that live, each { pid, name }; none when the system does not tell. */
  members() {
    return membersOf(this.pid).catch(() => []);
  }

  async #lives() {
    if (!isAlive(-this.pid)) return false;
    // In a container nobody may be there to notice the end of orphans, so that they stay listed.
    if (process.platform !== 'linux') return true;
    return groupMembers(this.pid).then(
      (members) => members.length > 0,
      () => true, // Not to be known, without free descriptors for example.
    );
  }

  /** Fulfilled with whether nothing of the group is left: as soon as that is so, or `gaveUp()` says to wait no longer. */
  async isGone(gaveUp) {
    // A group tells nobody of its end.
    while (await this.#lives()) {
      if (gaveUp()) return false;
      await new Promise((resolve) => setTimeout(resolve, LOOK_INTERVAL));
    }
    return true;
  }

  /** Lets the guard go: the group's number may be another's from now on. */
  release() {
    this.#guard.stdin.end('released\n');
  }
}
