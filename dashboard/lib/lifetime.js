import { fstatSync } from 'node:fs';
import { isAlive } from './processes/is-alive.js';

const DEFAULT_PORT = 47545;
const PARENT_CHECK_INTERVAL = 1000;

/** The preferred port of the environment's text, by default the usual one. Throws on anything but a port number. */
export function portFromEnvironment(text) {
  if (text === undefined || text === '') return DEFAULT_PORT;
  const port = Number(text);
  if (!/^\d{1,5}$/.test(text) || port > 65535) throw new Error(`HARBROOK_PORT is not a port number: ${text}`);
  return port;
}

/** Only a pipe tells by its end that its writer is gone: a terminal, a file and /dev/null mean nothing by it. */
function standardInputIsPipe() {
  try {
    const status = fstatSync(0);
    return status.isFIFO() || status.isSocket();
  } catch {
    return false;
  }
}

/** Calls `onEnd` when the program should end: by signal, at the end of standard input or of process `parent`. */
export function watchLifetime({ parent, onEnd }) {
  for (const signal of ['SIGTERM', 'SIGINT', 'SIGHUP']) process.on(signal, onEnd);

  if (standardInputIsPipe()) {
    process.stdin.on('error', onEnd);
    process.stdin.on('end', onEnd);
    process.stdin.on('close', onEnd);
    process.stdin.resume();
  }

  const parentPid = Number(parent);
  if (Number.isSafeInteger(parentPid) && parentPid > 1) {
    setInterval(() => {
      if (!isAlive(parentPid)) onEnd();
    }, PARENT_CHECK_INTERVAL);
  }
}
