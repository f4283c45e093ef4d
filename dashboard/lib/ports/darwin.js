import { execFile } from 'node:child_process';
import { promisify } from 'node:util';

const run = promisify(execFile);

/** Runs one of the system's tools; lsof ends with 1 when it could not look at something, which is no failure here. */
async function output(command, parameters) {
  try {
    return (await run(command, parameters, { timeout: 5000, maxBuffer: 16 * 1024 * 1024 })).stdout;
  } catch (error) {
    return error.stdout ?? '';
  }
}

function splitAddress(text) {
  const at = text.lastIndexOf(':');
  const address = text.slice(0, at).replace(/^\[|\]$/g, '');
  return { address: address === '*' ? '0.0.0.0' : address, port: Number(text.slice(at + 1)) };
}

/** The listening sockets in the output of "netstat -anv -p tcp". */
export function parseNetstat(text) {
  const sockets = [];
  for (const line of text.split('\n')) {
    if (!line.includes('LISTEN')) continue;
    const [protocol, , , local] = line.trim().split(/\s+/);
    const at = local.lastIndexOf('.');
    const any = protocol === 'tcp4' ? '0.0.0.0' : '::';
    const address = local.slice(0, at);
    sockets.push({ address: address === '*' ? any : address, port: Number(local.slice(at + 1)) });
  }
  return sockets;
}

const ESCAPES = { b: '\b', f: '\f', n: '\n', r: '\r', t: '\t' };

/** The name that lsof has written with escapes: all that is not ASCII, byte by byte, and control characters. */
export function unescapeName(text) {
  const bytes = [...text.matchAll(/\\x([0-9a-f]{2})|\\(.)|\^([@-_])|([^]+?(?=\\|\^[@-_]|$))/g)].map(
    ([, hex, letter, control, plain]) => {
      if (hex) return Buffer.from([parseInt(hex, 16)]);
      if (letter) return Buffer.from(ESCAPES[letter] ?? letter);
      if (control) return Buffer.from([control.charCodeAt(0) - 64]);
      return Buffer.from(plain);
    },
  );
  return Buffer.concat(bytes).toString('utf8');
}

/**
 * @typedef {{ pid: number, sockets: { address: string, port: number }[], group?: number, parent?: number, name?: string,
 *   uid?: number, folder?: string }} LsofProcess
 */

/**
 * The processes and their listening sockets in the output of lsof with the fields p, g, R, c, u and n.
 * @returns {LsofProcess[]}
 */
export function parseLsof(text) {
  /** @type {LsofProcess[]} */
  const processes = [];
  for (const line of text.split('\n')) {
    const value = line.slice(1);
    const current = processes.at(-1);
    if (line[0] === 'p') processes.push({ pid: Number(value), sockets: [] });
    else if (!current) continue;
    else if (line[0] === 'g') current.group = Number(value);
    else if (line[0] === 'R') current.parent = Number(value);
    else if (line[0] === 'c') current.name = value;
    else if (line[0] === 'u') current.uid = Number(value);
    else if (line[0] === 'n' && /:\d+$/.test(value)) current.sockets.push(splitAddress(value));
    else if (line[0] === 'n') current.folder = unescapeName(value);
  }
  return processes;
}

export const darwinPorts = {
  interval: 5000,

  async sockets() {
    return parseNetstat(await output('/usr/sbin/netstat', ['-anv', '-p', 'tcp']));
  },

  async withProcesses(sockets) {
    const listening = parseLsof(await output('/usr/sbin/lsof', ['-nP', '-iTCP', '-sTCP:LISTEN', '-FpgRcun']));
    const pids = listening.map((process) => process.pid).join(',');
    const [folders, commands] =
      pids === ''
        ? ['', '']
        : await Promise.all([
            output('/usr/sbin/lsof', ['-a', '-d', 'cwd', '-p', pids, '-Fpn']),
            output('/bin/ps', ['-ww', '-o', 'pid=,command=', '-p', pids]),
          ]);
    const folderOf = new Map(parseLsof(folders).map(({ pid, folder }) => [pid, folder]));
    const commandOf = new Map(
      commands
        .split('\n')
        .map((line) => /^\s*(\d+)\s+(.*)$/.exec(line))
        .filter(Boolean)
        .map(([, pid, command]) => [Number(pid), command]),
    );

    const found = listening.flatMap(({ sockets: own, ...process }) => {
      const described = {
        ...process,
        folder: folderOf.get(process.pid) ?? null,
        command: commandOf.get(process.pid) ?? '',
      };
      return own.map((socket) => ({ ...socket, uid: process.uid, process: described }));
    });
    const seen = new Set(found.map(({ port }) => port));
    return [...found, ...sockets.filter(({ port }) => !seen.has(port)).map((socket) => ({ ...socket, process: null }))];
  },
};
