import { basename } from 'node:path';
import { Worker } from 'node:worker_threads';
import { shownText } from '../text.js';
import { manifestsAmong } from './manifests.js';

const PATIENCE = 3000;
const IDLE = 10_000;
const MEMORY = { maxOldGenerationSizeMb: 256, maxYoungGenerationSizeMb: 32 };

/**
 * Reads projects' manifests in a worker with a limit of time for each, so that no folder can stop or slow down anything
 * but its own reading. The worker is there while there is something to read.
 */
export class ProjectReader {
  #patience;
  #worker = null;
  #isReady = false;
  #jobs = []; // The first one is being read.
  #timer = null;
  #idle = null;
  #closed = false;

  constructor({ patience = PATIENCE } = {}) {
    this.#patience = patience;
  }

  /** What the manifests among `names`, the files in folder `path`, say of the project; null when there is none. */
  async read(path, names) {
    const files = manifestsAmong(names).map(({ file }) => file);
    if (files.length === 0 || this.#closed) return null;
    return new Promise((resolve) => {
      this.#jobs.push({ path, names: files, resolve });
      this.#start();
      this.#worker.postMessage({ path, names: files });
      this.#watch();
    });
  }

  close() {
    this.#closed = true;
    this.#end();
    for (const { resolve } of this.#jobs.splice(0)) resolve(null);
  }

  #start() {
    clearTimeout(this.#idle);
    if (this.#worker) return;
    const worker = new Worker(new URL('./manifest-worker.js', import.meta.url), { resourceLimits: MEMORY, env: {} });
    this.#worker = worker;
    this.#isReady = false;
    worker.unref();
    worker.on('message', (answer) => this.#worker === worker && this.#take(answer));
    worker.on('error', (error) => this.#worker === worker && this.#giveUp(error.message));
  }

  #end() {
    clearTimeout(this.#timer);
    clearTimeout(this.#idle);
    this.#timer = null;
    this.#worker?.terminate();
    this.#worker = null;
  }

  #take({ isReady, project, error }) {
    clearTimeout(this.#timer);
    this.#timer = null;
    if (isReady) this.#isReady = true;
    else {
      const job = this.#jobs.shift();
      job.resolve(error === undefined ? project : this.#unread(job, error));
    }
    if (this.#jobs.length > 0) this.#watch();
    else this.#idle = setTimeout(() => this.#end(), IDLE).unref();
  }

  /** Times the reading of the first job. */
  #watch() {
    if (!this.#isReady || this.#timer) return;
    this.#timer = setTimeout(() => {
      const [late] = this.#jobs;
      // The answer may be waiting already while this program was busy itself.
      setImmediate(() => setImmediate(() => late === this.#jobs[0] && late && this.#giveUp('it takes too long')));
    }, this.#patience);
  }

  /** Gives the first job up and has the others read by a new worker. */
  #giveUp(reason) {
    this.#end();
    const job = this.#jobs.shift();
    if (job) job.resolve(this.#unread(job, reason));
    if (this.#jobs.length === 0 || this.#closed) return;
    this.#start();
    for (const { path, names } of this.#jobs) this.#worker.postMessage({ path, names });
  }

  /** What can be said of a project whose manifests cannot be read. */
  #unread({ path, names }, reason) {
    const [{ manifest }] = manifestsAmong(names);
    console.error(`The manifests in ${path} could not be read: ${reason}`);
    return {
      path,
      kind: manifest.kind,
      name: shownText(basename(path)) || 'Project',
      manifests: names,
      isWeak: manifest.isWeak ?? false,
      problem: `Its manifests could not be read: ${reason}.`,
    };
  }
}
