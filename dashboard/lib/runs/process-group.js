import { spawn } from 'node:child_process';

// The first process of the group. Its watcher waits for the end of a pipe (descriptor 3) that the dashboard holds: when the
// dashboard ends, by whatever means, the watcher ends the group. The watcher itself is deaf to the polite signal, so that
// it is still there to send the forceful one; it is born deaf, lest the signal come before it could turn so.
const LEADER = `
trap '' TERM INT HUP
( while read -r line; do :; done
  kill -TERM -$$ 2>/dev/null
  sleep 3
  kill -KILL -$$ 2>/dev/null
) <&3 3<&- >/dev/null 2>&1 &
trap - TERM INT HUP
exec 3<&- "$@"
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

/**
 * Starts `command` in `folder` in a process group of its own that does not outlive this process. Standard output and
 * standard error are pipes. The returned child is the group's leader and runs the command itself.
 */
export function spawnGroup(command, folder) {
  const child = spawn('/bin/sh', ['-c', LEADER, 'sh', ...userShell(command)], {
    cwd: folder,
    detached: true,
    env: environmentForProjects(),
    stdio: ['ignore', 'pipe', 'pipe', 'pipe'],
  });
  child.stdio[3]?.on('error', () => {});
  return child;
}

/** Sends `signal` to the whole group; false when nothing of it is left. */
export function signalGroup(pid, signal) {
  try {
    process.kill(-pid, signal);
    return true;
  } catch {
    return false;
  }
}
