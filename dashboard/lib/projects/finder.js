import { EventEmitter } from 'node:events';
import { existsSync } from 'node:fs';
import { readdir, realpath } from 'node:fs/promises';
import { basename, dirname, join } from 'node:path';
import { Debouncer, watchFolder } from './folder-watch.js';
import { isIgnored } from './ignored.js';
import { manifestOf, mattersToProject } from './manifests.js';
import { ProjectReader } from './project-reader.js';

const DEPTH = 4;
const DEPTH_INSIDE_PROJECT = 2;
const WORKERS = 8;
const MOST_FOLDERS = 20_000;
const MOST_FOLDERS_OF_ALL = 100_000;
const MOST_BELOW_ONE = 2000;
const MOST_WATCHED = 4096; // Once for what is inside of projects, and once for all else.
const RESCAN_UNWATCHED = 300_000;

/**
 * Finds the projects below a list of folders and keeps the list true by watching. Below a project only those folders
 * count that can be started themselves (a front end beside its back end), so that examples and libraries stay out.
 * However large the folders are, the number of folders read and watched is bounded, for each chosen folder by itself,
 * and nearer ones go first; what is not watched is read again every few minutes.
 *
 * Emits "change" when a project comes, goes or changes, and "ready" when the first scan is over.
 */
export class Finder extends EventEmitter {
  #nodes = new Map();
  #roots = [];
  #missingRoots = new Map();
  #queue = { near: [], deep: [] };
  #working = 0;
  #reader;
  #mostFolders;
  #known = new Map(); // For each root the number of folders below it that are looked through.
  #cut = new Map(); // For each root those folders in which some were left out.
  #unwatched = new Set();
  #watched = { inside: 0, elsewhere: 0 };
  #rescan = new Debouncer((path) => this.#enqueue(path), { delay: 200, spacing: 2000 });
  #unwatchedTimer = null;
  #closed = false;
  ready = false;

  constructor({ reader = new ProjectReader(), mostFolders = MOST_FOLDERS } = {}) {
    super();
    this.#reader = reader;
    this.#mostFolders = mostFolders;
  }

  /** The projects found so far, each with `path`, `realPath`, `name`, `kind` and what its manifest tells. */
  projects() {
    const found = [];
    for (const path of this.#nodes.keys()) {
      const project = this.project(path);
      if (project) found.push(project);
    }
    return found;
  }

  /** The project at exactly this path, or undefined. */
  project(path) {
    const node = this.#nodes.get(path);
    if (!node?.project) return undefined;
    const { command, isWeak } = node.project;
    if (isWeak) return node.inside || node.insideWeak ? undefined : node.project;
    return !node.inside || command ? node.project : undefined;
  }

  /** Looks below `roots` (absolute paths, existing or not) from now on. */
  setFolders(roots) {
    for (const root of this.#roots.filter((known) => !roots.includes(known))) {
      this.#forgetRoot(root);
      this.#enqueue(dirname(root)); // It may lie in another chosen folder.
    }
    this.#roots = [...roots];
    // Inner folders first, so that they count their own depth when an outer one is chosen too.
    for (const root of [...roots].sort((one, other) => other.length - one.length)) this.#addRoot(root);
    this.emit('change');
    this.#work();
  }

  /** Whether a chosen folder is there at the moment. */
  folderExists(root) {
    return !this.#missingRoots.has(root);
  }

  /** Whether a chosen folder holds more folders than are looked through. */
  folderIsCut(root) {
    return (this.#cut.get(root)?.size ?? 0) > 0;
  }

  close() {
    this.#closed = true;
    clearInterval(this.#unwatchedTimer);
    this.#rescan.close();
    this.#reader.close();
    for (const node of this.#nodes.values()) node.watcher?.close();
    for (const { watcher } of this.#missingRoots.values()) watcher?.close();
  }

  #addRoot(path) {
    const known = this.#nodes.get(path);
    if (known?.isRoot) return;
    // Below another chosen folder it counted as a part of that one.
    if (known) this.#forget(path);
    this.#nodes.get(dirname(path))?.children.delete(path);
    this.#keepNode({ path, root: path, depth: 0, inside: 0, insideWeak: false, isRoot: true });
    this.#enqueue(path);
  }

  #keepNode(node) {
    this.#nodes.set(node.path, { ...node, children: new Set() });
    this.#known.set(node.root, (this.#known.get(node.root) ?? 0) + 1);
  }

  #forgetRoot(path) {
    this.#missingRoots.get(path)?.watcher?.close();
    this.#missingRoots.delete(path);
    this.#forget(path);
    this.#known.delete(path);
    this.#cut.delete(path);
  }

  /** A root that is not there is waited for in the nearest folder above it that is. */
  #awaitRoot(path) {
    const node = this.#nodes.get(path);
    const children = [...node.children];
    const wasKnown = Boolean(node.project) || children.length > 0;
    for (const child of children) this.#forget(child);
    this.#unwatch(node);
    Object.assign(node, { children: new Set(), project: undefined, signature: undefined, realPath: undefined });

    const before = this.#missingRoots.get(path);
    let next = path;
    while (!existsSync(dirname(next)) && next !== '/') next = dirname(next);
    const above = dirname(next);
    if (before?.above !== above) {
      before?.watcher?.close();
      // What is waited for may come, and what is waited in may go.
      const awaited = new Set([basename(next), basename(above)]);
      const watcher = watchFolder(above, (_event, name) => awaited.has(name) && this.#rescan.schedule(path));
      this.#missingRoots.set(path, { above, watcher });
      if (existsSync(next)) this.#rescan.schedule(path);
    }
    if (!before || wasKnown) this.emit('change');
  }

  #forget(path) {
    const node = this.#nodes.get(path);
    if (!node) return;
    this.#nodes.delete(path);
    this.#known.set(node.root, this.#known.get(node.root) - 1);
    if (this.#cut.get(node.root)?.has(path)) this.#keepCut(node, false);
    this.#unwatched.delete(path);
    this.#rescan.forget(path);
    this.#unwatch(node);
    for (const child of node.children) this.#forget(child);
    if (node.project) this.emit('change');
  }

  #enqueue(path) {
    const node = this.#nodes.get(path);
    if (!node || this.#closed) return;
    (node.inside ? this.#queue.deep : this.#queue.near).push(path);
    this.#work();
  }

  #work() {
    while (this.#working < WORKERS) {
      const path = this.#queue.near.shift() ?? this.#queue.deep.shift();
      if (path === undefined) break;
      this.#working += 1;
      this.#scan(path)
        .catch((error) => console.error(`Scanning ${path}: ${error.message}`))
        .finally(() => {
          this.#working -= 1;
          this.#work();
        });
    }
    if (this.#working === 0 && !this.ready && !this.#closed) {
      this.ready = true;
      this.emit('ready');
      this.emit('change');
    }
  }

  async #scan(path) {
    const node = this.#nodes.get(path);
    if (!node) return;
    let entries;
    try {
      node.realPath ??= await realpath(path);
      entries = await readdir(path, { withFileTypes: true });
    } catch (error) {
      if (this.#closed || this.#nodes.get(path) !== node) return;
      const isGone = error.code === 'ENOENT' || error.code === 'ENOTDIR';
      if (node.isRoot && isGone) this.#awaitRoot(path);
      // Without free descriptors for example, which is no reason to forget anything.
      else if (!isGone && error.code !== 'EACCES') this.#rescan.schedule(path);
      return;
    }
    const files = entries.filter((entry) => !entry.isDirectory() && manifestOf(entry.name)).map(({ name }) => name);
    const project = files.length > 0 ? await this.#reader.read(path, files) : null;
    if (this.#closed || this.#nodes.get(path) !== node) return;

    if (this.#missingRoots.has(path)) {
      this.#missingRoots.get(path).watcher?.close();
      this.#missingRoots.delete(path);
      this.emit('change');
    }
    // A checkout without a manifest of its own may hold projects, but not deep down.
    if (!project && entries.some(({ name }) => name === '.git'))
      node.depth = Math.max(node.depth, DEPTH - DEPTH_INSIDE_PROJECT);
    this.#keepProject(node, project);
    this.#keepChildren(node, entries);
    this.#watch(node);
  }

  #keepProject(node, project) {
    const signature = project ? JSON.stringify(project) : '';
    if (signature === (node.signature ?? '')) return;
    // Becoming or ceasing to be a project changes how deep the scan goes below this folder.
    if (Boolean(project) !== Boolean(node.project)) {
      for (const child of node.children) this.#forget(child);
      node.children.clear();
    }
    node.signature = signature;
    node.project = project ? { ...project, realPath: node.realPath } : null;
    this.emit('change');
  }

  #keepChildren(node, entries) {
    // A chosen folder is looked through in full even when it has a manifest itself.
    const opensProject = node.project && !node.isRoot;
    const isInside = node.inside > 0 || (opensProject && !node.project.isWeak);
    const inside = isInside ? node.inside + 1 : 0;
    const insideWeak = node.insideWeak || Boolean(opensProject && node.project.isWeak);
    const goesOn = isInside ? inside <= DEPTH_INSIDE_PROJECT : node.depth < DEPTH;
    const present = new Set();
    for (const entry of goesOn ? entries : []) {
      if (entry.isDirectory() && !isIgnored(entry.name)) present.add(join(node.path, entry.name));
    }
    for (const child of node.children) {
      if (!present.has(child)) {
        node.children.delete(child);
        this.#forget(child);
      }
    }
    let isCut = false;
    for (const child of present) {
      if (this.#nodes.has(child)) continue;
      isCut = node.children.size >= MOST_BELOW_ONE || this.#isFull(node.root);
      if (isCut) break;
      node.children.add(child);
      const realPath = join(node.realPath, basename(child));
      const depth = node.depth + 1;
      this.#keepNode({ path: child, root: node.root, realPath, depth, inside, insideWeak, isRoot: false });
      this.#enqueue(child);
    }
    this.#keepCut(node, isCut);
  }

  #isFull(root) {
    const most = Math.min(this.#mostFolders, MOST_FOLDERS_OF_ALL / this.#roots.length);
    return (this.#known.get(root) ?? 0) >= most;
  }

  #keepCut({ root, path }, isCut) {
    const before = this.folderIsCut(root);
    if (!this.#cut.has(root)) this.#cut.set(root, new Set());
    if (isCut) this.#cut.get(root).add(path);
    else this.#cut.get(root).delete(path);
    if (before !== this.folderIsCut(root)) this.emit('change');
  }

  #unwatch(node) {
    if (!node.watcher) return;
    node.watcher.close();
    node.watcher = null;
    this.#watched[node.inside ? 'inside' : 'elsewhere'] -= 1;
  }

  #watch(node) {
    if (node.watcher) return;
    const place = node.inside ? 'inside' : 'elsewhere';
    // The system has a limited number of watches for all the user's programs together.
    if (this.#watched[place] < MOST_WATCHED) {
      node.watcher = watchFolder(node.path, (event, name) => this.#hear(node, event, name));
    }
    if (node.watcher) {
      this.#watched[place] += 1;
      this.#unwatched.delete(node.path);
    } else this.#unwatched.add(node.path);
    if (this.#unwatched.size > 0 && !this.#unwatchedTimer) {
      this.#unwatchedTimer = setInterval(
        () => this.#unwatched.forEach((path) => this.#enqueue(path)),
        RESCAN_UNWATCHED,
      );
    }
  }

  #hear(node, event, name) {
    const matters = mattersToProject(name);
    // Writing a log file into a project's folder says nothing about the project.
    if (event === 'rename' || matters) this.#rescan.schedule(node.path);
    // What starts the members of a workspace is said at its root.
    if (matters && node.project) this.#rescanInside(node);
  }

  #rescanInside(node) {
    for (const path of node.children) {
      const child = this.#nodes.get(path);
      if (child?.project) this.#rescan.schedule(path);
      if (child) this.#rescanInside(child);
    }
  }
}
