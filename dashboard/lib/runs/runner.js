import { EventEmitter } from 'node:events';
import { ProcessGroup } from '../processes/process-group.js';
import { Refusal } from '../refusal.js';
import { stopCommandFor, stopContainers, waitsForContainers } from './compose.js';
import { diagnose } from './diagnose.js';
import { RunLog } from './run-log.js';
import { RunStore } from './run-store.js';

/**
 * How long a command may take to end when it is asked: by a stop, because its leader or the dashboard ends, and with
 * containers.
 */
export const PATIENCE = { stop: 10_000, end: 5000, containers: 60_000 };

const SAID_AFTER = 1500;
const FORCE_WAIT = 2000;
const LAST_OUTPUT = 300;
const LAST_WORDS = 15_000; // What came earlier is not why it ended.
const NOT_FOUND = 127;

/** Fulfilled when `promise` is, at the latest after `milliseconds`. */
async function within(milliseconds, promise) {
  let timer;
  const late = new Promise((resolve) => {
    timer = setTimeout(resolve, milliseconds);
  });
  await Promise.race([promise, late]);
  clearTimeout(timer);
}

function outcome(run) {
  if (run.stopping) return 'Stopped.';
  if (run.signal) return `Ended by ${run.signal}.`;
  return run.code === 0 ? 'Ended normally.' : `Ended with code ${run.code}.`;
}

function whyNotStarted(error) {
  if (error.code === 'ENOENT' || error.code === 'ENOTDIR') return 'the folder is gone.';
  if (error.code === 'EMFILE' || error.code === 'ENFILE') return 'too many files are open.';
  if (error.code === 'EAGAIN' || error.code === 'ENOMEM') return 'the system grants no further process.';
  return error.message;
}

const names = (members) => [...new Set(members.map(({ name, pid }) => `${name} (${pid})`))].slice(0, 5);

/** Runs the projects' start commands. Emits "change" when a run begins, is asked to stop, or ends. */
export class Runner extends EventEmitter {
  #runs = new Map();
  #starting = new Set();
  #store;
  #environment;
  #closing = false;

  /** Keeps output below `directory`; `environment` is a UserEnvironment, without one the dashboard's own is used. */
  constructor(directory, environment = { get: async () => process.env, forget() {} }) {
    super();
    this.#store = new RunStore(directory);
    this.#environment = environment;
  }

  /**
   * The last run of a project since the dashboard's start: { project, pid, startedAt, stopping, waitingFor, ended, code,
   * signal, command } or undefined. It has ended when nothing of its process group is left; `waitingFor` names the
   * processes that a stop waits for. `project` is what was known of the project at the start.
   */
  run(path) {
    return this.#runs.get(path);
  }

  /** The last run of every project that was started since the dashboard's start. */
  runs() {
    return [...this.#runs.values()];
  }

  isRunning(path) {
    const run = this.#runs.get(path);
    return run !== undefined && !run.ended;
  }

  /** The process groups that run now, from their leader's process id to the project's path. */
  groups() {
    return new Map([...this.#runs].filter(([, run]) => !run.ended).map(([path, run]) => [run.pid, path]));
  }

  /** Starts `command` in the folder of `project`. Throws a Refusal when it runs already or cannot be started. */
  async start(project, command) {
    const { path } = project;
    if (this.#closing) throw new Refusal('ending', 'Harbrook is quitting.');
    if (this.isRunning(path) || this.#starting.has(path)) {
      throw new Refusal('conflict', 'The project is running already.');
    }
    this.#starting.add(path);
    try {
      await this.#begin(project, command);
    } finally {
      this.#starting.delete(path);
      this.emit('change');
    }
  }

  async #begin(project, command) {
    const { path } = project;
    const environment = await this.#environment.get();
    const startedAt = Date.now();
    const log = new RunLog(this.#store.begin(path, { startedAt, command }));
    const run = { project, command, environment, log, startedAt, stopping: false, waitingFor: [], ended: false };
    Object.assign(run, { pid: null, code: null, signal: null, hints: [] });
    log.append(`$ ${command}\n`);
    const patience = (stopCommandFor(command) ? PATIENCE.containers : PATIENCE.end) / 1000;
    try {
      run.group = await ProcessGroup.start(command, { folder: path, environment, patience });
    } catch (error) {
      this.#runs.set(path, run);
      const why = whyNotStarted(error);
      this.#finish(run, { hints: [] }, `Could not be started: ${why}`);
      throw new Refusal('failed', `The command could not be started: ${why}`);
    }
    this.#runs.set(path, run);
    run.pid = run.group.pid;
    const { leader } = run.group;
    for (const stream of [leader.stdout, leader.stderr]) this.#collect(stream, log);
    run.finished = new Promise((resolve) => {
      leader.once('exit', (code, signal) => this.#end(run, { code, signal }).then(resolve));
    });
    if (this.#closing) this.stop(path, PATIENCE.end);
    run.group.begin();
  }

  #collect(stream, log) {
    stream.on('data', (chunk) => {
      const full = log.append(chunk);
      // What was read before the pause still arrives.
      if (!full || stream.isPaused()) return;
      stream.pause();
      const resume = () => {
        full.off('drain', resume).off('close', resume);
        stream.resume();
      };
      full.on('drain', resume).on('close', resume);
    });
  }

  async #end(run, { code, signal }) {
    const { group, log } = run;
    const { leader } = group;
    const output =
      leader.stdout.closed && leader.stderr.closed ? null : new Promise((resolve) => leader.once('close', resolve));
    const lastWords = performance.now();
    // What the command has left behind in its group goes with it.
    if (!run.stopping) {
      group.signal('SIGTERM');
      const latest = performance.now() + PATIENCE.end;
      const gone = await group.isGone(() => run.stopping || performance.now() > latest);
      if (!gone && !run.stopping) this.#force(run);
    }
    await group.isGone(() => run.forcedAt !== undefined && performance.now() > run.forcedAt + FORCE_WAIT);
    group.release();
    // The last output may still be in the pipes.
    await within(LAST_OUTPUT, output);
    if (run.forcedAt !== undefined && stopCommandFor(run.command)) {
      log.append(await stopContainers(run.command, { folder: run.project.path, environment: run.environment }));
    }
    const isFailure = !run.stopping && code !== 0;
    const hints = isFailure ? diagnose(log.text(LAST_WORDS + performance.now() - lastWords)) : [];
    // What was not found may be installed by the time of the next start, and in another place.
    if (code === NOT_FOUND) this.#environment.forget();
    this.#finish(run, { code, signal, hints }, `\n${outcome({ ...run, code, signal })}`);
  }

  #finish(run, result, lastLine) {
    Object.assign(run, result, { ended: true, endedAt: Date.now(), waitingFor: [] });
    const { project, command, startedAt, endedAt, code, signal, stopping: stopped, hints } = run;
    run.log.append(`${lastLine}\n`);
    run.log.close();
    this.#store.record(project.path, { command, startedAt, endedAt, code, signal, stopped, hints });
    this.emit('change');
  }

  #force(run) {
    run.forcedAt = performance.now();
    run.log.append('\nDid not end when asked; forced.\n');
    run.group.signal('SIGKILL');
  }

  /**
   * Asks the project's group to end and forces it after `patience` milliseconds; a client of a container engine is given
   * the time that its containers may take. Fulfilled when it has ended.
   */
  async stop(path, patience = PATIENCE.stop) {
    const run = this.#runs.get(path);
    if (!run || run.ended) throw new Refusal('conflict', 'Harbrook has not started this project.');
    if (!run.stopping) {
      run.stopping = true;
      run.group.signal('SIGTERM');
      this.emit('change');
      run.stopped = this.#waitForEnd(run, patience);
    }
    await run.stopped;
  }

  async #waitForEnd(run, patience) {
    const said = Math.min(SAID_AFTER, patience);
    await within(said, run.finished);
    if (run.ended) return;
    const members = await run.group.members();
    const longest = members.some(waitsForContainers) ? Math.max(patience, PATIENCE.containers) : patience;
    run.waitingFor = names(members);
    const seconds = Math.ceil((longest - said) / 1000);
    const remark = `Waiting for ${run.waitingFor.join(', ') || 'it'} to end, for ${seconds} s at most.`;
    if (seconds > 0) run.log.append(`\n${remark}\n`);
    if (this.#closing) console.error(`${run.project.path}: ${remark}`);
    this.emit('change');
    await within(longest - said, run.finished);
    if (run.ended) return;
    this.#force(run);
    await run.finished;
  }

  /** What is kept of the project's runs, of earlier starts of the dashboard too; the latest first. */
  history(path) {
    return this.#store.list(path);
  }

  /** The kept output of a run of the project, by the time of its start, or else of its last one. */
  logText(path, startedAt = undefined) {
    const run = this.#runs.get(path);
    if (run && (startedAt === undefined || startedAt === run.startedAt)) return run.log.text();
    return this.#store.text(path, startedAt);
  }

  /** Ends everything that was started here. */
  async close() {
    this.#closing = true;
    const running = [...this.#runs].filter(([, run]) => !run.ended);
    await Promise.all(running.map(([path]) => this.stop(path, PATIENCE.end)));
  }
}
