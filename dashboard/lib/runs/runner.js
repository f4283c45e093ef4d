import { EventEmitter } from 'node:events';
import { diagnose } from './diagnose.js';
import { ProcessGroup } from '../processes/process-group.js';
import { Refusal } from '../refusal.js';
import { logFileFor, readLogEnd, RunLog } from './run-log.js';

export const GRACE = 5000;
const GRACE_AT_END = 2000;
const FORCE_WAIT = 2000;
const LAST_OUTPUT = 300;

const wait = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));

function outcome(run) {
  if (run.stopping) return 'Stopped.';
  if (run.signal) return `Ended by ${run.signal}.`;
  return run.code === 0 ? 'Ended normally.' : `Ended with code ${run.code}.`;
}

/** Runs the projects' start commands. Emits "change" when a run begins, is asked to stop, or ends. */
export class Runner extends EventEmitter {
  #runs = new Map();
  #directory;
  #closing = false;

  constructor(directory) {
    super();
    this.#directory = directory;
  }

  /**
   * The last run of a project: { pid, startedAt, stopping, ended, code, signal, command } or undefined. It has ended
   * when nothing of its process group is left.
   */
  run(path) {
    return this.#runs.get(path);
  }

  isRunning(path) {
    const run = this.#runs.get(path);
    return run !== undefined && !run.ended;
  }

  /** The process groups that run now, from their leader's process id to the project's path. */
  groups() {
    return new Map([...this.#runs].filter(([, run]) => !run.ended).map(([path, run]) => [run.pid, path]));
  }

  /** Starts `command` in the project's folder. Throws a Refusal when it runs already or cannot be started. */
  async start(path, command) {
    if (this.#closing) throw new Refusal('ending', 'Harbrook is quitting.');
    if (this.isRunning(path)) throw new Refusal('conflict', 'The project is running already.');
    const log = new RunLog(logFileFor(this.#directory, path));
    log.append(`$ ${command}\n`);
    const group = new ProcessGroup(command, path);
    const { leader } = group;
    const run = {
      group,
      pid: group.pid,
      command,
      log,
      startedAt: Date.now(),
      stopping: false,
      ended: false,
      code: null,
      signal: null,
    };
    this.#runs.get(path)?.log.close();
    this.#runs.set(path, run);
    for (const stream of [leader.stdout, leader.stderr]) this.#collect(stream, log);
    run.finished = new Promise((resolve) => {
      leader.once('exit', (code, signal) => this.#end(run, { code, signal }).then(resolve));
      leader.once('error', (error) => {
        if (group.pid === undefined) this.#failed(run, error).then(resolve);
      });
    });
    if (group.pid === undefined) {
      await run.finished;
      throw new Refusal('failed', `The command could not be started: ${run.failure}`);
    }
    this.emit('change');
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
    stream.on('error', () => {});
  }

  async #failed(run, error) {
    Object.assign(run, {
      ended: true,
      endedAt: Date.now(),
      failure: error.code === 'ENOENT' ? 'the folder is gone.' : error.message,
    });
    run.log.append(`Could not be started: ${run.failure}\n`);
    this.emit('change');
  }

  async #end(run, { code, signal }) {
    const { group, log } = run;
    const { leader } = group;
    const output =
      leader.stdout.closed && leader.stderr.closed ? null : new Promise((resolve) => leader.once('close', resolve));
    // What the command has left behind in its group goes with it.
    if (!run.stopping) group.signal('SIGTERM');
    if (!(await group.isGone(GRACE))) {
      group.signal('SIGKILL');
      await group.isGone(FORCE_WAIT);
    }
    group.release();
    // The last output may still be in the pipes.
    await Promise.race([output, wait(LAST_OUTPUT)]);
    const hints = run.stopping || code === 0 ? [] : diagnose(log.text());
    Object.assign(run, { code, signal, hints, ended: true, endedAt: Date.now() });
    log.append(`\n${outcome(run)}\n`);
    log.close();
    this.emit('change');
  }

  /** Asks the project's group to end and forces it after the grace time. Fulfilled when it has ended. */
  async stop(path, grace = GRACE) {
    const run = this.#runs.get(path);
    if (!run || run.ended) throw new Refusal('conflict', 'Harbrook has not started this project.');
    if (!run.stopping) {
      run.stopping = true;
      this.emit('change');
      run.group.signal('SIGTERM');
    }
    await Promise.race([run.finished, wait(grace)]);
    if (run.ended) return;
    run.log.append('\nDid not end when asked; forced.\n');
    run.group.signal('SIGKILL');
    await Promise.race([run.finished, wait(FORCE_WAIT)]);
  }

  /** The kept output of the project's last run, of an earlier start of the dashboard too. */
  logText(path) {
    return this.#runs.get(path)?.log.text() ?? readLogEnd(logFileFor(this.#directory, path));
  }

  logFile(path) {
    return logFileFor(this.#directory, path);
  }

  /** Ends everything that was started here. */
  async close() {
    this.#closing = true;
    const running = [...this.#runs].filter(([, run]) => !run.ended);
    await Promise.all(running.map(([path]) => this.stop(path, GRACE_AT_END).catch(() => {})));
  }
}
