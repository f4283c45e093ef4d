import { spawn } from 'node:child_process';
import { userInfo } from 'node:os';
import { basename, delimiter } from 'node:path';

const PATIENCE = 8000;
const LONGEST = 4 * 1024 * 1024;
const MARK = '__HARBROOK_ENVIRONMENT__';

// Single quotes alone mean the same to every shell, so there is none inside.
const PRINT = `process.stdout.write("${MARK}" + JSON.stringify(process.env) + "${MARK}")`;

/** What belongs to the shell that was asked, or to Harbrook, and to no program that is started. */
const isNobodysElse = (name) => /^(HARBROOK_.*|_|SHLVL|PWD|OLDPWD)$/.test(name);

const withoutOwn = (environment) =>
  Object.fromEntries(Object.entries(environment).filter(([name]) => !isNobodysElse(name)));

/** The user's shell, by the session or else by the list of users. */
export function userShell(environment = process.env) {
  if (environment.SHELL) return environment.SHELL;
  try {
    return userInfo().shell ?? '/bin/sh';
  } catch {
    return '/bin/sh';
  }
}

/** What makes a shell read everything that it reads in a terminal; the C shell takes "-l" only alone. */
const parametersOf = (shell) => (/^t?csh$/.test(basename(shell)) ? ['-i', '-c'] : ['-l', '-i', '-c']);

/** Asks `shell` for the environment that its start files make. Rejected when it does not tell it in time. */
export function askShell(shell, { patience = PATIENCE, environment = process.env } = {}) {
  return new Promise((resolve, reject) => {
    // In a session of its own no terminal can stop it.
    const child = spawn(
      shell,
      [...parametersOf(shell), `'${process.execPath.replaceAll("'", "'\\''")}' -e '${PRINT}'`],
      {
        detached: true,
        env: withoutOwn(environment),
        stdio: ['ignore', 'pipe', 'ignore'],
      },
    );
    const finish = (task) => {
      clearTimeout(timer);
      task();
      child.stdout?.destroy();
      try {
        process.kill(-child.pid, 'SIGKILL');
      } catch {
        // Nothing of it is left.
      }
    };
    const timer = setTimeout(() => finish(() => reject(new Error('it did not answer in time'))), patience);
    child.on('error', (error) => finish(() => reject(error)));
    let text = '';
    child.stdout?.setEncoding('utf8').on('data', (chunk) => {
      text += chunk;
      const [, found, rest] = text.split(MARK);
      if (rest !== undefined) finish(() => resolve(JSON.parse(found)));
      else if (text.length > LONGEST) finish(() => reject(new Error('it prints too much')));
    });
    child.stdout?.on('error', () => {});
    child.on('close', (code) => finish(() => reject(new Error(`it ended with ${code} and did not tell it`))));
  });
}

/** The search path of the user's shell, and behind it what the dashboard itself was given. */
function joinedPath(one, other) {
  return [...new Set([one, other].flatMap((path) => (path ?? '').split(delimiter)).filter(Boolean))].join(delimiter);
}

/** What makes a program print at once and in colour, though its output goes to no terminal. The user's choice holds. */
function forOutput(environment) {
  const wanted = { PYTHONUNBUFFERED: '1' };
  if (environment.NO_COLOR === undefined) Object.assign(wanted, { FORCE_COLOR: '1', CLICOLOR_FORCE: '1' });
  return wanted;
}

/**
 * The environment that the user's own shell makes, in which the projects are started: a desktop session knows nothing of
 * what version managers add to the search path. The shell is asked once, when the environment is first needed.
 */
export class UserEnvironment {
  #shell;
  #patience;
  #reading = null;

  /** Why the shell's environment is not used, or null. */
  problem = null;

  constructor({ shell = userShell(), patience = PATIENCE } = {}) {
    this.#shell = shell;
    this.#patience = patience;
  }

  get shell() {
    return this.#shell;
  }

  /** The variables for a program. When the shell does not tell them, those of the dashboard have to do. */
  get() {
    this.#reading ??= this.#read();
    return this.#reading;
  }

  /** Has the shell asked anew when the environment is needed next. */
  forget() {
    this.#reading = null;
  }

  async #read() {
    const own = withoutOwn(process.env);
    let told = {};
    try {
      told = withoutOwn(await askShell(this.#shell, { patience: this.#patience }));
      this.problem = null;
    } catch (error) {
      this.problem = `The environment of ${this.#shell} could not be read: ${error.message}.`;
      console.error(this.problem);
    }
    const joined = { ...own, ...told, PATH: joinedPath(told.PATH, own.PATH) };
    return { ...forOutput(joined), ...joined };
  }
}
