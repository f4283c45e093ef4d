import assert from 'node:assert/strict';
import { once } from 'node:events';
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { mkdir, readdir, stat, writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { test } from 'node:test';
import { diagnose } from '../lib/runs/diagnose.js';
import { readLogEnd } from '../lib/runs/run-log.js';
import { runFolder, RunStore } from '../lib/runs/run-store.js';
import { PATIENCE, Runner } from '../lib/runs/runner.js';
import { UserEnvironment } from '../lib/processes/user-environment.js';
import { makeHome } from './support/machine.js';
import { eventually } from './support/waiting.js';

async function makeRunner(t, environment) {
  const home = await makeHome(t);
  const folder = join(home, 'it’s a project');
  await mkdir(folder);
  const logs = join(home, 'logs');
  const runner = new Runner(logs, environment);
  t.after(() => runner.close());
  return { folder, home, logs, runner };
}

const ended = async (runner, path) => {
  while (runner.isRunning(path)) await once(runner, 'change', { signal: AbortSignal.timeout(10_000) });
  return runner.run(path);
};

const printed = (runner, path, text) =>
  eventually(() => runner.logText(path).includes(text), { what: `“${text}” in the output` });

function isAlive(pid) {
  try {
    process.kill(pid, 0);
    return true;
  } catch {
    return false;
  }
}

test('a command runs in its project’s folder without the shell’s own variables, with its output kept', async (t) => {
  process.env.HARBROOK_TOKEN = 'secret';
  t.after(() => delete process.env.HARBROOK_TOKEN);
  const { folder, logs, runner } = await makeRunner(t, new UserEnvironment({ shell: '/bin/sh' }));
  await runner.start({ path: folder }, 'pwd; echo "[$HARBROOK_TOKEN]" >&2; echo "$((6 * 7))"');
  const run = await ended(runner, folder);
  assert.equal(run.code, 0);
  const text = runner.logText(folder);
  for (const expected of [folder, '[]', '42', 'Ended normally.']) assert.ok(text.includes(expected), expected);
  const kept = join(runFolder(logs, folder), `${run.startedAt}.log`);
  await eventually(() => readLogEnd(kept).includes('Ended normally.'));
  assert.equal((await stat(kept)).mode & 0o777, 0o600);
});

test('a failing command tells its code and a known cause', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start({ path: folder }, 'echo "Error: listen EADDRINUSE: address already in use :::3000" >&2; exit 3');
  const run = await ended(runner, folder);
  assert.equal(run.code, 3);
  assert.deepEqual(run.hints, ['Port 3000 is taken by another program.']);
  assert.ok(runner.logText(folder).includes('Ended with code 3.'));
});

test('a program that is not there is told', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start({ path: folder }, 'no-such-program-here --serve');
  const run = await ended(runner, folder);
  assert.equal(run.code, 127);
  assert.match(run.hints[0], /no-such-program-here/);
});

test('a folder that is gone is an error at once', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await assert.rejects(runner.start({ path: join(folder, 'gone') }, 'true'), { reason: 'failed' });
  assert.equal(runner.isRunning(join(folder, 'gone')), false);
});

test('a running project is not started twice, a resting one not stopped', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await assert.rejects(runner.stop(folder), { reason: 'conflict' });
  await runner.start({ path: folder }, 'sleep 60');
  await assert.rejects(runner.start({ path: folder }, 'sleep 60'), { reason: 'conflict' });
  await runner.stop(folder);
  await assert.rejects(runner.stop(folder), { reason: 'conflict' });
  await runner.start({ path: folder }, 'sleep 60');
  assert.equal(runner.isRunning(folder), true);
});

test('stop ends the whole group, with what the command started', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start({ path: folder }, 'sleep 61 & echo "child $!"; wait');
  await printed(runner, folder, '\nchild ');
  const child = Number(/\nchild (\d+)/.exec(runner.logText(folder))[1]);
  await runner.stop(folder);
  const run = runner.run(folder);
  assert.equal(run.ended && run.stopping, true);
  await eventually(() => !isAlive(child), { what: 'the child to end' });
});

test('a command that will not end when asked is forced after the grace time', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start({ path: folder }, `trap 'echo "asked"' TERM; echo ready; while :; do sleep 0.05; done`);
  await printed(runner, folder, '\nready');
  await runner.stop(folder, 300);
  const run = runner.run(folder);
  assert.equal(run.signal, 'SIGKILL');
  assert.ok(runner.logText(folder).includes('asked'));
  assert.ok(runner.logText(folder).includes('Did not end when asked; forced.'));
});

test('a command has its time to end well', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start(
    { path: folder },
    `trap 'echo "tidied up"; exit 0' TERM; echo ready; while :; do sleep 0.05; done`,
  );
  await printed(runner, folder, '\nready');
  await runner.stop(folder);
  assert.equal(runner.run(folder).code, 0);
  assert.ok(runner.logText(folder).includes('tidied up'));
});

test('what a command leaves behind in its group ends after it', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start({ path: folder }, `(trap '' TERM; exec sleep 62) & echo "left $!"`);
  await ended(runner, folder);
  const left = Number(/left (\d+)/.exec(runner.logText(folder))[1]);
  await eventually(() => !isAlive(left), { what: 'what was left behind to end' });
});

test('a project has not ended before the last of its group has', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start({ path: folder }, `(trap '' TERM; echo deaf; while :; do sleep 0.05; done) & wait`);
  await printed(runner, folder, '\ndeaf');
  const { pid } = runner.run(folder);
  const stopped = runner.stop(folder, 1000);
  await eventually(() => !isAlive(pid), { what: 'the command itself to end' });
  assert.equal(runner.isRunning(folder), true);
  await assert.rejects(runner.start({ path: folder }, 'true'), { reason: 'conflict' });
  await stopped;
  assert.equal(runner.isRunning(folder), false);
  assert.ok(runner.logText(folder).includes('Did not end when asked; forced.'));
});

test('a flood of output is kept in bounds, in memory and in the file', async (t) => {
  const { folder, logs, runner } = await makeRunner(t);
  await runner.start({ path: folder }, "head -c 12000000 /dev/zero | tr '\\0' 'x' | fold -w 99; echo; echo the end");
  await ended(runner, folder);
  const text = runner.logText(folder);
  assert.ok(text.includes('the end'));
  assert.ok(text.length < 400_000, `${text.length} characters are kept`);
  const directory = runFolder(logs, folder);
  const files = (await readdir(directory)).filter((name) => !name.endsWith('.json'));
  const sizes = await Promise.all(files.map(async (name) => (await stat(join(directory, name))).size));
  assert.equal(sizes.length, 2);
  for (const size of sizes) assert.ok(size < 3_000_000, `${size} bytes`);
});

test('close ends everything and lets nothing begin', async (t) => {
  const { folder, home, runner } = await makeRunner(t);
  await runner.start({ path: folder }, 'sleep 63');
  await runner.start({ path: home }, 'sleep 64');
  const pids = [runner.run(folder).pid, runner.run(home).pid];
  await runner.close();
  assert.deepEqual(pids.map(isAlive), [false, false]);
  await assert.rejects(runner.start({ path: folder }, 'true'), { reason: 'ending' });
});

test('logs of projects with the same folder name are kept apart, and no name leads out of the directory', () => {
  assert.notEqual(runFolder('/logs', '/a/shop'), runFolder('/logs', '/b/shop'));
  assert.match(runFolder('/logs', '/a/..'), /^\/logs\/\.\.-[0-9a-f]{10}$/);
  assert.match(runFolder('/logs', '/a/x y/\n'), /^\/logs\/_-[0-9a-f]{10}$/);
  assert.equal(readLogEnd('/does/not/exist'), '');
});

test('causes are read from the output of common tools', () => {
  const causes = [
    ['Error: listen EADDRINUSE: address already in use 127.0.0.1:8080', 'Port 8080 is taken by another program.'],
    ['bind: address already in use', 'The port it wants is taken by another program.'],
    ['sh: 1: vite: not found', 'The program “vite” was not found. It may have to be installed first.'],
    [
      '/bin/bash: line 1: cargo: command not found',
      'The program “cargo” was not found. It may have to be installed first.',
    ],
    ["Error: Cannot find module 'express'", 'The package “express” is missing. Its dependencies may not be installed.'],
    [
      "ModuleNotFoundError: No module named 'django'",
      'The Python module “django” is missing. Its dependencies may not be installed.',
    ],
    ['connect ECONNREFUSED 127.0.0.1:5432', 'PostgreSQL does not answer on port 5432.'],
    ['Cannot connect to the Docker daemon at unix:///x', 'The Docker engine is not running.'],
    ['npm error Missing script: "dev"', 'package.json has no script “dev”.'],
  ];
  for (const [output, cause] of causes) assert.deepEqual(diagnose(`$ x\n${output}\n`), [cause]);
  assert.deepEqual(diagnose('$ x\nListening on 3000\nSegmentation fault\n'), []);
});

test('a trouble that was got over, or is long past, is not blamed', () => {
  assert.deepEqual(diagnose('Port 3000 is in use, trying another one...\nReady on 3001\nSegmentation fault\n'), []);
  assert.deepEqual(diagnose('Port 5173 is in use, using port 5174 instead\nTypeError: x is not a function\n'), []);
  const earlier = `Error: listen EADDRINUSE :::3000\n${'GET / 200\n'.repeat(100)}Segmentation fault\n`;
  assert.deepEqual(diagnose(earlier), []);
  assert.deepEqual(diagnose('EADDRINUSE :::3000, retrying\nError: listen EADDRINUSE :::3001\n'), [
    'Port 3001 is taken by another program.',
  ]);
  assert.deepEqual(diagnose('Address already in use\nPort 5000 is in use by another program. Either stop it, or\n'), [
    'Port 5000 is taken by another program.',
  ]);
  assert.deepEqual(diagnose('\x1b[31msh: 1: \x1b[1mvite\x1b[0m: not found\n'), [
    'The program “vite” was not found. It may have to be installed first.',
  ]);
});

test('what a command printed long before its end is not why it ended', async (t) => {
  const { folder, runner } = await makeRunner(t);
  const now = performance.now.bind(performance);
  let ahead = 0;
  t.mock.method(performance, 'now', () => now() + ahead);
  execFileSync('mkfifo', [join(folder, 'go')]);
  await runner.start({ path: folder }, 'echo "EADDRINUSE :::3000"; echo served; read -r wait < go; exit 3');
  await printed(runner, folder, '\nserved');
  ahead = 60_000;
  await writeFile(join(folder, 'go'), 'on\n');
  assert.deepEqual((await ended(runner, folder)).hints, []);
});

test('the last ten runs are kept with how they went, for the next start of the dashboard too', async (t) => {
  const { folder, logs, runner } = await makeRunner(t);
  for (let index = 1; index <= 12; index += 1) {
    await runner.start({ path: folder }, `echo "run number ${index}"; exit ${index}`);
    await ended(runner, folder);
  }
  const later = new Runner(logs);
  const runs = later.history(folder);
  assert.deepEqual(
    runs.map(({ code }) => code),
    [12, 11, 10, 9, 8, 7, 6, 5, 4, 3],
  );
  assert.ok(runs.every(({ startedAt, endedAt }) => endedAt >= startedAt));
  await eventually(() => later.logText(folder).includes('run number 12'), { what: 'the last output on the disk' });
  assert.ok(later.logText(folder, runs[4].startedAt).includes('run number 8\n\nEnded with code 8.'));
  assert.equal(later.logText(folder, 5), '');
  assert.equal((await readdir(runFolder(logs, folder))).length, 20);
});

test('runs that printed much leave room for fewer', async (t) => {
  const home = await makeHome(t);
  const store = new RunStore(home);
  for (let startedAt = 1; startedAt <= 8; startedAt += 1) {
    await writeFile(store.begin('/p', { startedAt, command: 'x' }), 'x'.repeat(3_500_000));
  }
  assert.deepEqual(
    store.list('/p').map(({ startedAt }) => startedAt),
    [8, 7, 6, 5, 4],
  );
});

test('a run that was cut off is kept without an end', async (t) => {
  const home = await makeHome(t);
  new RunStore(home).begin('/p', { startedAt: 7, command: 'serve' });
  await writeFile(join(runFolder(home, '/p'), '8.json'), '{"comm');
  assert.deepEqual(new RunStore(home).list('/p'), [{ startedAt: 7, command: 'serve' }]);
});

test('who is waited for is said', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start({ path: folder }, `trap 'echo asked' TERM; echo ready; while :; do sleep 0.05; done`);
  await printed(runner, folder, '\nready');
  const { pid } = runner.run(folder);
  const stopped = runner.stop(folder, 4000);
  await printed(runner, folder, '\nWaiting for ');
  assert.ok(runner.run(folder).waitingFor.includes(`sh (${pid})`), runner.run(folder).waitingFor.join());
  assert.equal(runner.run(folder).ended, false);
  await stopped;
  assert.deepEqual(runner.run(folder).waitingFor, []);
});

/** Puts a program named docker into the search path that acts as `script` says. */
async function playDocker(t, home, script) {
  const file = join(home, 'bin/docker');
  await mkdir(join(home, 'bin'));
  await writeFile(file, `#!/bin/sh\n${script}`, { mode: 0o755 });
  const before = process.env.PATH;
  process.env.PATH = `${join(home, 'bin')}:${before}`;
  t.after(() => {
    process.env.PATH = before;
  });
}

test('containers are given the time that they take to end', async (t) => {
  const { folder, home, runner } = await makeRunner(t);
  await playDocker(
    t,
    home,
    `trap 'sleep 2.5; echo "containers stopped"; exit 0' TERM; echo up; while :; do sleep 0.05; done`,
  );
  await runner.start({ path: folder }, 'docker compose up');
  await printed(runner, folder, '\nup');
  await runner.stop(folder, 1700);
  assert.equal(runner.run(folder).ended, true);
  assert.match(runner.logText(folder), /\nWaiting for .*docker \(\d+\).* to end.*\ncontainers stopped\n/s);
  assert.ok(!runner.logText(folder).includes('forced'));
});

test('no container is left when their client had to be forced', async (t) => {
  const { folder, home, runner } = await makeRunner(t);
  const limit = PATIENCE.containers;
  PATIENCE.containers = 1800;
  t.after(() => {
    PATIENCE.containers = limit;
  });
  await playDocker(
    t,
    home,
    `trap 'echo deaf' TERM
case "$*" in *stop) echo "asked to: $*"; exit;; esac
echo up; while :; do sleep 0.05; done`,
  );
  await runner.start({ path: folder }, 'docker compose -f dev.yml up --build');
  await printed(runner, folder, '\nup');
  await runner.stop(folder, 1000);
  assert.ok(runner.logText(folder).includes('Did not end when asked; forced.'));
  assert.ok(runner.logText(folder).includes('asked to: compose -f dev.yml stop'));
});

test('a command starts in the environment of the user’s own shell', async (t) => {
  const home = await makeHome(t);
  await mkdir(join(home, 'tools'));
  await writeFile(join(home, 'tools/only-here'), '#!/bin/sh\necho "found, $FROM_PROFILE"\n', { mode: 0o755 });
  await writeFile(join(home, '.bashrc'), `echo noise; export PATH=${home}/tools:$PATH FROM_PROFILE="it's there"\n`);
  await writeFile(join(home, '.bash_profile'), '. ~/.bashrc\n');
  const before = process.env.HOME;
  process.env.HOME = home;
  t.after(() => {
    process.env.HOME = before;
  });
  const runner = new Runner(join(home, 'logs'), new UserEnvironment({ shell: '/bin/bash' }));
  t.after(() => runner.close());
  await runner.start({ path: home }, 'only-here; echo "[$PYTHONUNBUFFERED $FORCE_COLOR $HARBROOK_TOKEN]"');
  assert.equal((await ended(runner, home)).code, 0);
  assert.ok(runner.logText(home).includes("found, it's there\n[1 1 ]"), runner.logText(home));
});

test('a shell that hangs, fails or chatters costs a start a limited time and no more', async (t) => {
  const home = await makeHome(t);
  const shells = { hang: 'sleep 100 & wait', fail: 'exit 3', chatter: 'yes' };
  for (const [name, script] of Object.entries(shells)) {
    const shell = join(home, name);
    await writeFile(shell, `#!/bin/sh\n${script}\n`, { mode: 0o755 });
    const environment = new UserEnvironment({ shell, patience: 500 });
    assert.equal((await environment.get()).HOME, process.env.HOME);
    assert.match(environment.problem, new RegExp(`${name} could not be read`));
  }
  const missing = new UserEnvironment({ shell: join(home, 'missing') });
  assert.ok((await missing.get()).PATH);
});

test('the shell is asked once, and again when that is asked for or a program was not found', async (t) => {
  const { folder, home, logs } = await makeRunner(t);
  const shell = join(home, 'counting');
  await writeFile(shell, `#!/bin/sh\necho x >> ${home}/asked\nexec /bin/sh -c "$4"\n`, { mode: 0o755 });
  const environment = new UserEnvironment({ shell });
  const asked = () => readFileSync(join(home, 'asked'), 'utf8').length / 2;
  const runner = new Runner(logs, environment);
  const run = async (command) => {
    await runner.start({ path: folder }, command);
    await ended(runner, folder);
  };
  await run('true');
  await run('false');
  assert.equal(asked(), 1);
  await run('no-such-program-here');
  await run('true');
  assert.equal(asked(), 2);
  environment.forget();
  await run('true');
  assert.equal(asked(), 3);
});
