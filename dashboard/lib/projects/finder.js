import { EventEmitter } from 'node:events';
import { readdir, realpath } from 'node:fs/promises';
import { basename, dirname, join } from 'node:path';
import { Debouncer, watchFolder } from './folder-watch.js';
import { isIgnored } from './ignored.js';
import { MANIFEST_NAMES } from './manifests.js';
import { readProject } from './read-project.js';

const DEPTH = 4;
const DEPTH_INSIDE_PROJECT = 2;
const WORKERS = 8;
const MOST_FOLDERS = 20_000;
const MOST_WATCHED = 4096;
const RESCAN_UNWATCHED = 300_000;

/**
 * Finds the projects below a list of folders and keeps the list true by watching. Below a project only those folders
 * count that can be started themselves (a front end beside its back end), so that examples and libraries stay out.
 * However large the folders are, the number of folders read and watched is bounded; what is not watched is read again
 * every few minutes.
 *
 * Emits "change" when a project comes, goes or changes, and "ready" when the first scan is over.
 */
export class Finder extends EventEmitter {
  #nodes = new Map();
  #roots = [];
  #missingRoots = new Map();
  #queue = { near: [], deep: [] };
  #working = 0;
  #unwatched = new Set();
  #watched = 0;
  #rescan = new Debouncer((path) => this.#enqueue(path), { delay: 200, spacing: 2000 });
  #unwatchedTimer = null;
  #closed = false;
  ready = false;

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
    return node?.project && (!node.inside || node.project.command) ? node.project : undefined;
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

  close() {
    this.#closed = true;
    clearInterval(this.#unwatchedTimer);
    this.#rescan.close();
    for (const node of this.#nodes.values()) node.watcher?.close();
    for (const watcher of this.#missingRoots.values()) watcher?.close();
  }

  #addRoot(path) {
    const known = this.#nodes.get(path);
    if (known?.isRoot) return;
    this.#nodes.get(dirname(path))?.children.delete(path);
    if (known) Object.assign(known, { depth: 0, inside: 0, isRoot: true });
    else this.#nodes.set(path, { path, depth: 0, inside: 0, isRoot: true, children: new Set() });
    this.#enqueue(path);
  }

  #forgetRoot(path) {
    this.#missingRoots.get(path)?.close();
    this.#missingRoots.delete(path);
    this.#forget(path);
  }

  /** A root that is not there is waited for in the folder above it. */
  #awaitRoot(path) {
    const node = this.#nodes.get(path);
    const children = [...node.children];
    const wasKnown = Boolean(node.project) || children.length > 0;
    for (const child of children) this.#forget(child);
    this.#unwatch(node);
    Object.assign(node, { children: new Set(), project: undefined, signature: undefined });
    if (!this.#missingRoots.has(path)) {
      const onChange = (_event, name) => name === basename(path) && this.#rescan.schedule(path);
      this.#missingRoots.set(path, watchFolder(dirname(path), onChange));
      this.emit('change');
    } else if (wasKnown) this.emit('change');
  }

  #forget(path) {
    const node = this.#nodes.get(path);
    if (!node) return;
    this.#nodes.delete(path);
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
    } catch {
      if (node.isRoot && this.#nodes.get(path) === node) this.#awaitRoot(path);
      return;
    }
    const names = new Set(entries.map((entry) => entry.name));
    const project = await readProject(path, names);
    if (this.#closed || this.#nodes.get(path) !== node) return;

    if (this.#missingRoots.has(path)) {
      this.#missingRoots.get(path)?.close();
      this.#missingRoots.delete(path);
      this.emit('change');
    }
    // A checkout without a manifest of its own may hold projects, but not deep down.
    if (!project && names.has('.git')) node.depth = Math.max(node.depth, DEPTH - DEPTH_INSIDE_PROJECT);
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
    const inside = node.inside > 0 || opensProject ? node.inside + 1 : 0;
    const goesOn = inside > 0 ? inside <= DEPTH_INSIDE_PROJECT : node.depth < DEPTH;
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
    for (const child of present) {
      if (this.#nodes.has(child)) continue;
      if (this.#nodes.size >= MOST_FOLDERS) break;
      node.children.add(child);
      const realPath = join(node.realPath, basename(child));
      this.#nodes.set(child, {
        path: child,
        realPath,
        depth: node.depth + 1,
        inside,
        isRoot: false,
        children: new Set(),
      });
      this.#enqueue(child);
    }
  }

  #unwatch(node) {
    if (!node.watcher) return;
    node.watcher.close();
    node.watcher = null;
    this.#watched -= 1;
  }

  #watch(node) {
    if (node.watcher || (node.inside && !node.project)) return;
    // The system has a limited number of watches for all the user's programs together.
    if (this.#watched < MOST_WATCHED) {
      node.watcher = watchFolder(node.path, (event, name) => {
        // Writing a log file into a project's folder says nothing about the project.
        if (event === 'rename' || MANIFEST_NAMES.has(name)) this.#rescan.schedule(node.path);
      });
    }
    if (node.watcher) {
      this.#watched += 1;
      this.#unwatched.delete(node.path);
    } else this.#unwatched.add(node.path);
    if (this.#unwatched.size > 0 && !this.#unwatchedTimer) {
      this.#unwatchedTimer = setInterval(
        () => this.#unwatched.forEach((path) => this.#enqueue(path)),
        RESCAN_UNWATCHED,
      );
    }
  }
}
