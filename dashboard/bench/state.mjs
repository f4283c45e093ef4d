// How cheap the shell's poll is: `node bench/state.mjs [projects] [idle seconds] [folders]`. Makes a home with that many projects,
// runs the dashboard in it, and prints the time of a poll (unchanged and just after a change), the time until all projects
// are known, and the server's processor time while a shell polls every three seconds. The last figure is read from
// /proc, so it is printed on Linux only. The machine's load is printed too: what else runs is in every figure.
import { mkdir, mkdtemp, readFile, rm, writeFile } from 'node:fs/promises';
import { Agent, get } from 'node:http';
import { loadavg, tmpdir } from 'node:os';
import { join } from 'node:path';
import { startDashboard, TOKEN, writeTree } from '../test/support/machine.js';

const projects = Number(process.argv[2] ?? 500);
const idleSeconds = Number(process.argv[3] ?? 60);
const folders = Number(process.argv[4] ?? 0); // Among them, inside of the projects, as packages and sources are.
const TICKS_PER_SECOND = 100;
const POLL_INTERVAL = 3000;
const SETTLE = 5000; // The start's own work, garbage collection above all, is over by then.
const wait = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));
const load = () => `load ${loadavg()[0].toFixed(2)}`;

const tasks = [];
const t = { after: (task) => tasks.unshift(task) };
const home = await mkdtemp(join(tmpdir(), 'harbrook-bench-'));
t.after(() => rm(home, { recursive: true, force: true }));

function project(index) {
  return {
    [`projects/group${index % 20}/p${index}/package.json`]: {
      name: `project-${index}`,
      version: '1.0.0',
      scripts: { dev: 'vite' },
    },
    [`projects/group${index % 20}/p${index}/src/parts/a.js`]: '',
    [`projects/group${index % 20}/p${index}/test/b.js`]: '',
    [`projects/group${index % 20}/p${index}/node_modules/c/package.json`]: {},
  };
}

async function addFolders(index) {
  const path = join(home, `projects/group${index % 20}/p${index}`);
  for (let folder = 0; folder < folders / projects; folder += 1) {
    // Two in three lie where nobody looks.
    const place = folder % 3 > 0 ? `node_modules/c${folder}` : `src/part${folder % 7}/more${folder}`;
    await mkdir(join(path, place), { recursive: true });
  }
}

function quantiles(times) {
  const sorted = times.sort((one, other) => one - other);
  const at = (share) => sorted[Math.min(sorted.length - 1, Math.floor(sorted.length * share))].toFixed(2);
  return `median ${at(0.5)} ms, 99 % below ${at(0.99)} ms`;
}

// As the shell does it: on a connection that is kept.
const agent = new Agent({ keepAlive: true });
t.after(() => agent.destroy());

/** The milliseconds until the whole answer is there. */
function poll({ port }) {
  const start = performance.now();
  return new Promise((resolve, reject) => {
    get({ agent, host: 'localhost', port, path: '/api/state', headers: { 'X-Harbrook-Token': TOKEN } }, (response) => {
      response
        .on('end', () => resolve(performance.now() - start))
        .on('error', reject)
        .resume();
    }).on('error', reject);
  });
}

async function processorSeconds(pid) {
  const fields = (await readFile(`/proc/${pid}/stat`, 'utf8')).split(') ')[1].split(' ');
  return (Number(fields[11]) + Number(fields[12])) / TICKS_PER_SECOND;
}

try {
  for (let index = 0; index < projects; index += 1) {
    await writeTree(home, project(index));
    await addFolders(index);
  }
  const start = performance.now();
  const dashboard = await startDashboard(t, home);
  console.log(`announced after ${(performance.now() - start).toFixed(0)} ms`);
  await dashboard.until((overview) => overview.ready && overview.projects.length === projects);
  console.log(`all ${projects} projects known after ${(performance.now() - start).toFixed(0)} ms`);

  const unchanged = [];
  for (let index = 0; index < 1000; index += 1) unchanged.push(await poll(dashboard));
  console.log(`api/state, unchanged: ${quantiles(unchanged)} (${load()})`);

  const changed = [];
  for (let index = 0; index < 100; index += 1) {
    await dashboard.post('api/project/settings', { path: join(home, 'projects/group0/p0'), menubar: index % 2 === 0 });
    changed.push(await poll(dashboard));
  }
  console.log(`api/state, after a change: ${quantiles(changed)} (${load()})`);

  const before = performance.now();
  await writeFile(join(home, 'projects/group1/p1/package.json'), '{"name":"renamed"}');
  await dashboard.until((overview) => overview.projects.some(({ name }) => name === 'renamed'));
  console.log(`a changed manifest is seen after ${(performance.now() - before).toFixed(0)} ms`);

  if (process.platform === 'linux') {
    await wait(SETTLE);
    const usedBefore = await processorSeconds(dashboard.child.pid);
    const begin = performance.now();
    while (performance.now() - begin < idleSeconds * 1000) {
      await poll(dashboard);
      await wait(POLL_INTERVAL);
    }
    const used = (await processorSeconds(dashboard.child.pid)) - usedBefore;
    console.log(
      `processor while idle and polled: ${((100 * used * 1000) / (performance.now() - begin)).toFixed(2)} % of a core (${load()})`,
    );
  }
} finally {
  for (const task of tasks) await task();
}
