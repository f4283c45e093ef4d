import assert from 'node:assert/strict';
import { once } from 'node:events';
import { mkdir, readdir, stat } from 'node:fs/promises';
import { join } from 'node:path';
import { test } from 'node:test';
import { diagnose } from '../lib/runs/diagnose.js';
import { logFileFor, readLogEnd } from '../lib/runs/run-log.js';
import { Runner } from '../lib/runs/runner.js';
import { makeHome } from './support/machine.js';
import { eventually } from './support/waiting.js';

async function makeRunner(t) {
  const home = await makeHome(t);
  const folder = join(home, 'it’s a project');
  await mkdir(folder);
  const runner = new Runner(join(home, 'logs'));
  t.after(() => runner.close());
  return { folder, home, runner };
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
  const { folder, runner } = await makeRunner(t);
  await runner.start(folder, 'pwd; echo "[$HARBROOK_TOKEN]" >&2; echo "$((6 * 7))"');
  const run = await ended(runner, folder);
  assert.equal(run.code, 0);
  const text = runner.logText(folder);
  for (const expected of [folder, '[]', '42', 'Ended normally.']) assert.ok(text.includes(expected), expected);
  await eventually(() =>
    readLogEnd(logFileFor(runner.logFile(folder).replace(/\/[^/]*$/, ''), folder)).includes('Ended normally.'),
  );
  assert.equal((await stat(runner.logFile(folder))).mode & 0o777, 0o600);
});

test('a failing command tells its code and a known cause', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start(folder, 'echo "Error: listen EADDRINUSE: address already in use :::3000" >&2; exit 3');
  const run = await ended(runner, folder);
  assert.equal(run.code, 3);
  assert.deepEqual(run.hints, ['Port 3000 is taken by another program.']);
  assert.ok(runner.logText(folder).includes('Ended with code 3.'));
});

test('a program that is not there is told', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start(folder, 'no-such-program-here --serve');
  const run = await ended(runner, folder);
  assert.equal(run.code, 127);
  assert.match(run.hints[0], /no-such-program-here/);
});

test('a folder that is gone is an error at once', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await assert.rejects(runner.start(join(folder, 'gone'), 'true'), { reason: 'failed' });
  assert.equal(runner.isRunning(join(folder, 'gone')), false);
});

test('a running project is not started twice, a resting one not stopped', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await assert.rejects(runner.stop(folder), { reason: 'conflict' });
  await runner.start(folder, 'sleep 60');
  await assert.rejects(runner.start(folder, 'sleep 60'), { reason: 'conflict' });
  await runner.stop(folder);
  await assert.rejects(runner.stop(folder), { reason: 'conflict' });
  await runner.start(folder, 'sleep 60');
  assert.equal(runner.isRunning(folder), true);
});

test('stop ends the whole group, with what the command started', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start(folder, 'sleep 61 & echo "child $!"; wait');
  await printed(runner, folder, '\nchild ');
  const child = Number(/\nchild (\d+)/.exec(runner.logText(folder))[1]);
  await runner.stop(folder);
  const run = runner.run(folder);
  assert.equal(run.ended && run.stopping, true);
  await eventually(() => !isAlive(child), { what: 'the child to end' });
});

test('a command that will not end when asked is forced after the grace time', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start(folder, `trap 'echo "asked"' TERM; echo ready; while :; do sleep 0.05; done`);
  await printed(runner, folder, '\nready');
  await runner.stop(folder, 300);
  const run = runner.run(folder);
  assert.equal(run.signal, 'SIGKILL');
  assert.ok(runner.logText(folder).includes('asked'));
  assert.ok(runner.logText(folder).includes('Did not end when asked; forced.'));
});

test('a command has its time to end well', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start(folder, `trap 'echo "tidied up"; exit 0' TERM; echo ready; while :; do sleep 0.05; done`);
  await printed(runner, folder, '\nready');
  await runner.stop(folder);
  assert.equal(runner.run(folder).code, 0);
  assert.ok(runner.logText(folder).includes('tidied up'));
});

test('what a command leaves behind in its group ends after it', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start(folder, `(trap '' TERM; exec sleep 62) & echo "left $!"`);
  await ended(runner, folder);
  const left = Number(/left (\d+)/.exec(runner.logText(folder))[1]);
  await eventually(() => !isAlive(left), { what: 'what was left behind to end' });
});

test('a project has not ended before the last of its group has', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start(folder, `(trap '' TERM; echo deaf; while :; do sleep 0.05; done) & wait`);
  await printed(runner, folder, '\ndeaf');
  const { pid } = runner.run(folder);
  const stopped = runner.stop(folder, 1000);
  await eventually(() => !isAlive(pid), { what: 'the command itself to end' });
  assert.equal(runner.isRunning(folder), true);
  await assert.rejects(runner.start(folder, 'true'), { reason: 'conflict' });
  await stopped;
  assert.equal(runner.isRunning(folder), false);
  assert.ok(runner.logText(folder).includes('Did not end when asked; forced.'));
});

test('a flood of output is kept in bounds, in memory and in the file', async (t) => {
  const { folder, runner } = await makeRunner(t);
  await runner.start(folder, "head -c 12000000 /dev/zero | tr '\\0' 'x' | fold -w 99; echo; echo the end");
  await ended(runner, folder);
  const text = runner.logText(folder);
  assert.ok(text.includes('the end'));
  assert.ok(text.length < 400_000, `${text.length} characters are kept`);
  const directory = join(runner.logFile(folder), '..');
  const sizes = await Promise.all(
    (await readdir(directory)).map(async (name) => (await stat(join(directory, name))).size),
  );
  assert.equal(sizes.length, 2);
  for (const size of sizes) assert.ok(size < 5_000_000, `${size} bytes`);
});

test('close ends everything and lets nothing begin', async (t) => {
  const { folder, home, runner } = await makeRunner(t);
  await runner.start(folder, 'sleep 63');
  await runner.start(home, 'sleep 64');
  const pids = [runner.run(folder).pid, runner.run(home).pid];
  await runner.close();
  assert.deepEqual(pids.map(isAlive), [false, false]);
  await assert.rejects(runner.start(folder, 'true'), { reason: 'ending' });
});

test('logs of projects with the same folder name are kept apart, and no name leads out of the directory', () => {
  assert.notEqual(logFileFor('/logs', '/a/shop'), logFileFor('/logs', '/b/shop'));
  assert.match(logFileFor('/logs', '/a/..'), /^\/logs\/\.\.-[0-9a-f]{10}\.log$/);
  assert.match(logFileFor('/logs', '/a/x y/\n'), /^\/logs\/_-[0-9a-f]{10}\.log$/);
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
