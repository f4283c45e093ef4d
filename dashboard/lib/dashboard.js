import { EventEmitter } from 'node:events';
import { join } from 'node:path';
import { setTimeout as wait } from 'node:timers/promises';
import { UserEnvironment } from './processes/user-environment.js';
import { PortWatcher } from './ports/port-watcher.js';
import { Finder } from './projects/finder.js';
import { Refusal } from './refusal.js';
import { Remembered } from './projects/remembered.js';
import { Runner } from './runs/runner.js';
import { Services } from './services/services.js';
import { Settings } from './settings.js';
import { overviewOf, stateOf } from './snapshots.js';

const ANNOUNCE_DELAY = 80;
// How long the page may have the processors to itself: from its first overview, and for that to be asked for.
const HEAD_START = 60;
const LONGEST_HEAD_START = 1000;
const LONGEST_ANSWER = 20_000;

const hasFailed = (run) => run.ended && !run.stopping && run.code !== 0;

/**
 * What the dashboard knows, joined from its parts. Answers are made once for every change and kept, so that asking
 * again and again costs nothing. Emits "change" shortly after anything has changed.
 */
export class Dashboard extends EventEmitter {
  #made = new Map();
  #announce = null;
  #look = null;
  #hasHeadStart = false;
  #before = [];
  // Grows with every change, and from one start to the next.
  revision = Date.now();

  constructor({ directory, dataDirectory, home }) {
    super();
    this.setMaxListeners(0);
    this.directory = directory;
    this.home = home;
    this.dataDirectory = dataDirectory;
    this.settings = new Settings({ dataDirectory, home });
    this.finder = new Finder();
    this.remembered = new Remembered(join(dataDirectory, 'projects.json'));
    this.ports = new PortWatcher();
    this.services = new Services({ home, ports: this.ports });
    this.environment = new UserEnvironment();
    this.runner = new Runner(join(dataDirectory, 'logs', 'projects'), this.environment);
    for (const part of [this.settings, this.finder, this.ports, this.services, this.runner]) {
      part.on('change', () => this.#changed());
    }
    this.settings.on('change', () => this.finder.setFolders(this.settings.folders));
    this.runner.on('change', () => this.ports.lookClosely());
  }

  /**
   * Begins to look. Where the projects of the last time can be shown meanwhile, it does so only once the page has them,
   * so that the processors are the page's until then.
   */
  start() {
    this.#before = this.remembered.read(this.settings.folders);
    this.finder.once('ready', () => this.#keepProjects());
    this.#hasHeadStart = this.#before.length > 0;
    this.#lookAfter(this.#hasHeadStart ? LONGEST_HEAD_START : 0);
  }

  #lookAfter(delay) {
    clearTimeout(this.#look);
    this.#look = setTimeout(() => {
      this.#hasHeadStart = false;
      this.finder.setFolders(this.settings.folders);
      this.ports.start();
      this.services.start();
    }, delay);
  }

  async close() {
    clearTimeout(this.#announce);
    clearTimeout(this.#look);
    this.finder.close();
    this.ports.close();
    this.services.close();
    await Promise.all([this.runner.close(), this.settings.settled(), this.#keepProjects()]);
  }

  /** The snapshot for the shell, as JSON bytes. */
  get state() {
    return this.#make('state', stateOf);
  }

  /** Everything that the page shows, as JSON bytes. */
  get overview() {
    if (this.#hasHeadStart) this.#lookAfter(HEAD_START);
    this.#hasHeadStart = false;
    return this.#make('overview', overviewOf);
  }

  /** The projects that are found and, until all folders have been looked through, those of the last time. */
  #found() {
    const found = this.finder.projects();
    if (this.finder.ready) return found;
    const known = new Set(found.map(({ path }) => path));
    return [...found, ...this.#before.filter(({ path }) => !known.has(path))];
  }

  async #keepProjects() {
    if (this.finder.ready) await this.remembered.write(this.settings.folders, this.finder.projects());
  }

  /**
   * The projects that are found, and those that are not any more but were started here and run, or failed: their output
   * and the way to stop them must not go with a manifest.
   */
  projects() {
    const found = this.#found();
    const known = new Set(found.map(({ path }) => path));
    const gone = this.runner.runs().filter((run) => !known.has(run.project.path) && (!run.ended || hasFailed(run)));
    return [...found, ...gone.map(({ project }) => ({ ...project, isGone: true }))];
  }

  /** The project at `path`, found or started here. Throws a Refusal when none is known there. */
  project(path) {
    const isIt = (project) => project.path === path;
    const found = this.#found().find(isIt) ?? (typeof path === 'string' ? this.runner.run(path)?.project : undefined);
    if (!found) throw new Refusal('unknown', 'There is no such project.');
    return found;
  }

  /** The command that starts the project: typed by the user, or else read from its manifest. */
  commandOf(project) {
    return this.settings.project(project.path).command ?? project.command;
  }

  async startProject(path) {
    const project = this.project(path);
    const command = this.commandOf(project);
    if (!command) throw new Refusal('conflict', 'The project has no start command.');
    await this.runner.start(project, command);
  }

  /** Fulfilled when the project has ended, or is still being waited for after as long as a client would wait. */
  async stopProject(path) {
    const stopped = this.runner.stop(path);
    const answer = new AbortController();
    await Promise.race([stopped, wait(LONGEST_ANSWER, null, { signal: answer.signal }).catch(() => {})]);
    answer.abort();
    await this.ports.look();
  }

  /** Asks the user's shell anew for the environment of projects. */
  async refreshEnvironment() {
    this.environment.forget();
    await this.environment.get();
    this.#changed();
  }

  #make(name, make) {
    if (!this.#made.has(name)) this.#made.set(name, Buffer.from(JSON.stringify(make(this))));
    return this.#made.get(name);
  }

  #changed() {
    this.revision += 1;
    this.#made.clear();
    this.#announce ??= setTimeout(() => {
      this.#announce = null;
      this.emit('change');
    }, ANNOUNCE_DELAY);
  }
}
