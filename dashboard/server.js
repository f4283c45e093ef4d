// The bundled dashboard. It finds the projects, ports and services of this machine and serves them, with the page that
// shows them, on the loopback interface. README.md describes its environment and how to run it without the shell.
import { randomBytes } from 'node:crypto';
import { homedir } from 'node:os';
import { join } from 'node:path';
import { createHandler } from './lib/http/handler.js';
import { listenOnLocalhost } from './lib/http/listen.js';
import { Dashboard } from './lib/dashboard.js';
import { portFromEnvironment, watchLifetime } from './lib/lifetime.js';

const environment = process.env;
const startedByShell = Boolean(environment.HARBROOK_TOKEN);
const token = environment.HARBROOK_TOKEN || randomBytes(32).toString('hex');
const dataDirectory = join(environment.HOME || homedir(), '.harbrook');

const dashboard = new Dashboard({ dataDirectory, home: environment.HOME || homedir() });
const handler = createHandler({ dashboard, token });

let listener;
try {
  listener = await listenOnLocalhost(handler, {
    port: portFromEnvironment(environment.HARBROOK_PORT),
    fallback: startedByShell ? environment.HARBROOK_PORT_FALLBACK === '1' : true,
  });
} catch (error) {
  console.error(`The dashboard cannot listen: ${error.message}`);
  process.exit(1);
}

// A reader that went away must not end the dashboard by an unhandled stream error.
process.stdout.on('error', () => {});
process.stderr.on('error', () => {});

let ending = false;
watchLifetime({
  parent: environment.HARBROOK_PARENT,
  async onEnd() {
    if (ending) return;
    ending = true;
    listener.close();
    await dashboard.close();
    process.exit(0);
  },
});

process.stdout.write(`HARBROOK_PORT ${listener.port}\n`);
if (!startedByShell) {
  process.stdout.write(`Open http://localhost:${listener.port}/#token=${token}\n`);
}
dashboard.start();
