// The bundled dashboard. It finds the projects, ports and services of this machine and serves them, with the page that
// shows them, on the loopback interface. README.md describes its environment and how to run it without the shell.
import { homedir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { listenOnLocalhost } from './lib/http/listen.js';
import { portFromEnvironment, watchLifetime } from './lib/lifetime.js';

const environment = process.env;
const startedByShell = Boolean(environment.HARBROOK_TOKEN);
const home = environment.HOME || homedir();
// Where this file is, and so package.json and the page; nothing else may ask, as the others are bundled into this one.
const directory = dirname(fileURLToPath(import.meta.url));

// A reader that went away must not end the dashboard by an unhandled stream error.
process.stdout.on('error', () => {});
process.stderr.on('error', () => {});

/** @type {(handler: import('node:http').RequestListener) => void} */
let begin;
const answering = new Promise((resolve) => {
  begin = resolve;
});

let listener;
try {
  listener = await listenOnLocalhost(async (request, response) => (await answering)(request, response), {
    port: portFromEnvironment(environment.HARBROOK_PORT),
    fallback: startedByShell ? environment.HARBROOK_PORT_FALLBACK === '1' : true,
  });
} catch (error) {
  console.error(`The dashboard cannot listen: ${error.message}`);
  process.exit(1);
}

let dashboard = null;
let ending = false;
watchLifetime({
  parent: environment.HARBROOK_PARENT,
  async onEnd() {
    if (ending) return;
    ending = true;
    listener.close();
    await dashboard?.close();
    process.exit(0);
  },
});

process.stdout.write(`HARBROOK_PORT ${listener.port}\n`);

// The rest is loaded while whoever reads the announcement turns to the port; the first request waits for it.
const [{ createHandler }, { Dashboard }] = await Promise.all([
  import('./lib/http/handler.js'),
  import('./lib/dashboard.js'),
]);
const token = environment.HARBROOK_TOKEN || (await import('node:crypto')).randomBytes(32).toString('hex');
if (!startedByShell) process.stdout.write(`Open http://localhost:${listener.port}/#token=${token}\n`);
if (!ending) {
  dashboard = new Dashboard({ directory, dataDirectory: join(home, '.harbrook'), home });
  begin(createHandler({ dashboard, token, pageDirectory: join(directory, 'page') }));
  dashboard.start();
}
