import { spawn } from 'node:child_process';
import { isAlive } from './is-alive.js';
import { groupLives } from './proc.js';

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
sleep 3
kill -KILL "-$1" 2>/dev/null
`;

/** A desktop session on macOS has a bare search path; the login shell knows where the user's tools are. */
function userShell(command) {
  const shell = process.env.SHELL ?? '';
  if (process.platform === 'darwin' && /\/(zsh|bash|fish)$/.test(shell)) return [shell, '-l', '-c', command];
  return ['/bin/sh', '-c', command];
}

function environmentForProjects() {
  const kept = Object.entries(process.env).filter(([name]) => !name.startsWith('HARBROOK_'));
  return Object.fromEntries(kept);
}

function startLeader(command, folder) {
  const leader = spawn('/bin/sh', ['-c', LEADER, 'sh', ...userShell(command)], {
    cwd: folder,
    detached: true,
    env: environmentForProjects(),
    stdio: ['ignore', 'pipe', 'pipe', 'pipe'],
  });
  leader.stdio[3]?.on('error', () => {});
  return leader;
}

function startGuard(group) {
  const guard = spawn('/bin/sh', ['-c', GUARD, 'sh', String(group)], {
    cwd: '/',
    detached: true,
    stdio: ['pipe', 'ignore', 'ignore'],
  });
  guard.on('error', () => {});
  guard.stdin?.on('error', () => {});
  return guard;
}

/** A command and all that it starts, in a process group of its own that does not outlive this process. */
export class ProcessGroup {
  #guard = null;

  /** The process that runs the command; its standard output and standard error are pipes. */
  leader;

  /** Starts `command` in `folder`. Without a `pid` it could not be started, and `leader` will emit "error". */
  constructor(command, folder) {
    this.leader = startLeader(command, folder);
    if (this.pid === undefined) return;
    this.#guard = startGuard(this.pid);
    if (this.#guard.pid !== undefined) this.leader.stdio[3].write('begin\n');
    this.leader.stdio[3].end();
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

  #lives() {
    // In a container nobody may be there to notice the end of orphans, so that they stay listed.
    return isAlive(-this.pid) && (process.platform !== 'linux' || groupLives(this.pid));
  }

  /** Fulfilled with whether nothing of the group is left, at the latest after `patience` milliseconds. */
  async isGone(patience) {
    const latest = performance.now() + patience;
    // A group tells nobody of its end.
    while (this.#lives()) {
      if (performance.now() > latest) return false;
      await new Promise((resolve) => setTimeout(resolve, LOOK_INTERVAL));
    }
    return true;
  }

  /** Lets the guard go: the group's number may be another's from now on. */
  release() {
    this.#guard?.stdin?.end('released\n');
  }
}
