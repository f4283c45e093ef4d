// Containers are the engine's processes, not the command's: they outlive a client that was killed.
import { execFile } from 'node:child_process';

const PATIENCE = 30_000;
const CLIENTS = /^(docker|docker-compose|podman|podman-compose|nerdctl|com\.docker\.cli)$/;
const UP = /^((?:docker|podman|nerdctl)[ -]compose\b[^;&|<>]*?) up\b/;

/** Whether a process of this name waits for containers, which it gives their own time to end. */
export const waitsForContainers = ({ name }) => CLIENTS.test(name);

/** The command that stops the containers which `command` has brought up, or null when it is no such command. */
export function stopCommandFor(command) {
  const start = UP.exec(command.trim())?.[1];
  return start ? `${start} stop` : null;
}

/** Stops what `command` has brought up. Fulfilled, whatever comes of it, with what the client printed. */
export function stopContainers(command, { folder, environment }) {
  return new Promise((resolve) => {
    /** @type {import('node:child_process').ExecFileOptionsWithStringEncoding} */
    const options = { encoding: 'utf8', cwd: folder, env: environment, timeout: PATIENCE, killSignal: 'SIGKILL' };
    execFile('/bin/sh', ['-c', stopCommandFor(command)], options, (_error, stdout, stderr) => resolve(stdout + stderr));
  });
}
