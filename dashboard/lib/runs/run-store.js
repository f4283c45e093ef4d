import { createHash } from 'node:crypto';
import { mkdirSync, readdirSync, readFileSync, rmSync, statSync, writeFileSync } from 'node:fs';
import { basename, join } from 'node:path';
import { readLogEnd } from './run-log.js';

const KEPT_RUNS = 10;
const KEPT_BYTES = 16 * 1024 * 1024;

/** The folder with a project's runs: readable by the name of the project's folder, unique by its path. */
export function runFolder(directory, projectPath) {
  const name =
    basename(projectPath)
      .replace(/[^\w.-]+/g, '_')
      .slice(0, 60) || 'project';
  return join(directory, `${name}-${createHash('sha256').update(projectPath).digest('hex').slice(0, 10)}`);
}

function sizeOf(file) {
  try {
    return statSync(file).size;
  } catch {
    return 0;
  }
}

function namesIn(folder) {
  try {
    return readdirSync(folder);
  } catch {
    return [];
  }
}

/**
 * The last runs of every project, on the disk: for each its output in "<time of its start>.log" and how it went in
 * "<time of its start>.json". What cannot be written is not kept; the run itself goes on.
 */
export class RunStore {
  #directory;

  constructor(directory) {
    this.#directory = directory;
  }

  /** Makes room for a run of the project at `path` that starts now, and returns the file for its output. */
  begin(path, { startedAt, command }) {
    const folder = runFolder(this.#directory, path);
    try {
      mkdirSync(folder, { recursive: true, mode: 0o700 });
    } catch {
      // Then neither file can be written.
    }
    this.#makeRoom(folder);
    this.record(path, { startedAt, command });
    return this.#file(path, startedAt, 'log');
  }

  /** Keeps how a run went: `startedAt`, `command` and, once it has ended, `endedAt`, `code`, `signal`, `stopped`. */
  record(path, run) {
    try {
      writeFileSync(this.#file(path, run.startedAt, 'json'), `${JSON.stringify(run)}\n`, { mode: 0o600 });
    } catch {
      // The output alone is kept.
    }
  }

  /** What was kept of the project's runs, the latest first. One without `endedAt` was cut off, unless it still runs. */
  list(path) {
    const folder = runFolder(this.#directory, path);
    const runs = namesIn(folder).flatMap((name) => {
      const startedAt = Number(/^(\d+)\.json$/.exec(name)?.[1]);
      if (!startedAt) return [];
      try {
        return [{ ...JSON.parse(readFileSync(join(folder, name), 'utf8')), startedAt }];
      } catch {
        return [];
      }
    });
    return runs.sort((one, other) => other.startedAt - one.startedAt);
  }

  /** The end of the output of one run, by default of the last one; empty when nothing of it is kept. */
  text(path, startedAt = this.#starts(runFolder(this.#directory, path))[0]) {
    return startedAt === undefined ? '' : readLogEnd(this.#file(path, startedAt, 'log'));
  }

  #file(path, startedAt, extension) {
    return join(runFolder(this.#directory, path), `${startedAt}.${extension}`);
  }

  /** When the runs in `folder` started, the latest first. */
  #starts(folder) {
    const starts = namesIn(folder)
      .map((name) => Number(/^(\d+)\.log$/.exec(name)?.[1]))
      .filter(Boolean);
    return starts.sort((one, other) => other - one);
  }

  #makeRoom(folder) {
    let bytes = 0;
    this.#starts(folder).forEach((startedAt, index) => {
      const files = ['log', 'log.1', 'json'].map((extension) => join(folder, `${startedAt}.${extension}`));
      bytes += files.map(sizeOf).reduce((sum, size) => sum + size, 0);
      if (index + 1 < KEPT_RUNS && bytes <= KEPT_BYTES) return;
      for (const file of files) rmSync(file, { force: true });
    });
  }
}
