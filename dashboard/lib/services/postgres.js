import { readdir, readFile } from 'node:fs/promises';
import { join } from 'node:path';
import { ask } from './ask.js';

const TIMEOUT = 800;
const SOCKET_FOLDERS = ['/var/run/postgresql', '/tmp'];

// "Do you speak TLS?": the one question a server answers before it knows who asks. Eight bytes long, code 80877103.
const TLS_QUESTION = Buffer.from([0, 0, 0, 8, 0x04, 0xd2, 0x16, 0x2f]);

/**
 * Asks whether a PostgreSQL server listens at `target`: { tls } when it does, else null.
 * @param {import('./ask.js').Target} target
 */
export async function probePostgres(target) {
  const answer = (await ask(target, TLS_QUESTION, (bytes) => bytes.length > 0, TIMEOUT)).toString('latin1', 0, 1);
  return answer === 'S' || answer === 'N' ? { tls: answer === 'S' } : null;
}

/** The Unix sockets of PostgreSQL servers on this machine, from port number to path. */
export async function postgresSockets(folders = SOCKET_FOLDERS) {
  const found = new Map();
  for (const folder of folders) {
    for (const name of await readdir(folder).catch(() => [])) {
      const match = /^\.s\.PGSQL\.(\d+)$/.exec(name);
      if (match && !found.has(Number(match[1]))) found.set(Number(match[1]), join(folder, name));
    }
  }
  return found;
}

/** The server's version as far as the user may read it: from its data folder or its program's path. */
export async function postgresVersion(process) {
  if (process?.folder) {
    const text = await readFile(join(process.folder, 'PG_VERSION'), 'utf8').catch(() => '');
    if (/^\d+(\.\d+)*\s*$/.test(text)) return text.trim();
  }
  return /postgres(?:ql)?[@/-](\d+(?:\.\d+)*)\//.exec(process?.command ?? '')?.[1] ?? null;
}
