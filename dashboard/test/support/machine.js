// A home of its own for a test, and the dashboard run in it as a shell would run it.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { mkdtemp, mkdir, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { stateOf } from './waiting.js';

export const TOKEN = 'a1'.repeat(32);
const source = fileURLToPath(new URL('../../server.js', import.meta.url));

/** Writes `files`, a map from relative path to text (or an object, as JSON), below `folder`. */
export async function writeTree(folder, files) {
  for (const [path, content] of Object.entries(files)) {
    const file = join(folder, path);
    await mkdir(dirname(file), { recursive: true });
    await writeFile(file, typeof content === 'string' ? content : JSON.stringify(content));
  }
}

/** An empty home directory that is removed with the test. */
export async function makeHome(t) {
  const home = await mkdtemp(join(tmpdir(), 'harbrook-test-'));
  t.after(() => rm(home, { recursive: true, force: true, maxRetries: 5, retryDelay: 100 }));
  return home;
}

/** @import { Answers, Overview } from '../../types/api.js' */
/**
 * @template {string} Path
 * @typedef {Path extends `api/${infer Known extends keyof Answers}` ? Answers[Known] : any} Answer
 */

/**
 * Runs the dashboard with `home` and its standard input held open, at will with a limit of open `descriptors` or by
 * another `script`. Fulfilled once it has announced its port, with `port`, `child`, `output()` and the requests `get`
 * and `post`, which carry what an honest client carries.
 * @param {{ after: (task: () => unknown) => void }} t
 * @param {string} home
 * @param {Record<string, string>} [environment]
 * @param {{ descriptors?: number, script?: string }} [how]
 */
export async function startDashboard(t, home, environment = {}, { descriptors, script = source } = {}) {
  const limit = descriptors ? ['/bin/sh', '-c', `ulimit -n ${descriptors} && exec "$@"`, 'sh'] : [];
  const [program, ...parameters] = [...limit, process.execPath, script];
  const child = spawn(program, parameters, {
    env: {
      ...process.env,
      HOME: home,
      SHELL: '/bin/sh',
      HARBROOK_PORT: '0',
      HARBROOK_TOKEN: TOKEN,
      DOCKER_HOST: `unix://${home}/none.sock`,
      ...environment,
    },
    stdio: ['pipe', 'pipe', 'pipe'],
  });
  let output = '';
  child.stdout.on('data', (chunk) => {
    output += chunk;
  });
  child.stderr.on('data', (chunk) => {
    output += chunk;
  });
  child.stdin.on('error', () => {});
  const ended = once(child, 'exit');
  t.after(async () => {
    child.kill('SIGTERM');
    await ended;
  });

  const port = await new Promise((resolve, reject) => {
    child.stdout.on('data', () => {
      const match = /HARBROOK_PORT (\d+)\n/.exec(output);
      if (match) resolve(Number(match[1]));
    });
    child.once('exit', (code) => reject(new Error(`The dashboard ended with ${code}: ${output}`)));
  });
  const address = `http://localhost:${port}`;
  const headers = { 'X-Harbrook-Token': TOKEN };
  return {
    address,
    child,
    ended,
    port,
    output: () => output,
    get: (path) => fetch(`${address}/${path}`, { headers }),
    /** @type {<Path extends string>(path: Path) => Promise<Answer<Path>>} */
    json: async (path) => (await fetch(`${address}/${path}`, { headers })).json(),
    post: (path, body) =>
      fetch(`${address}/${path}`, {
        method: 'POST',
        headers: { ...headers, 'Content-Type': 'application/json', 'X-Harbrook': '1' },
        body: JSON.stringify(body),
      }),
    /** @type {(condition: (overview: Overview) => unknown) => Promise<Overview>} */
    until: (condition) => stateOf({ address, headers }, condition),
  };
}
