import { EventEmitter } from 'node:events';
import { readFileSync, renameSync } from 'node:fs';
import { isAbsolute, join, resolve } from 'node:path';
import { writeFileAtomically } from './atomic-file.js';
import { Refusal } from './refusal.js';

export const DEFAULT_FOLDERS = ['projects', 'src', 'code', 'dev'];
const MOST_FOLDERS = 50;
const LONGEST_PATH = 4096;
const LONGEST_COMMAND = 2000;

const refuse = (message) => {
  throw new Refusal('invalid', message);
};

function checkedFolders(value) {
  if (value === null) return null;
  if (!Array.isArray(value) || value.length > MOST_FOLDERS)
    refuse(`"folders" must be a list of at most ${MOST_FOLDERS}.`);
  const folders = value.map((folder) => {
    const usable =
      typeof folder === 'string' && folder.length <= LONGEST_PATH && isAbsolute(folder) && !folder.includes('\0');
    return usable ? resolve(folder) : refuse('Every folder must be an absolute path.');
  });
  return [...new Set(folders)];
}

function checkedCommand(value) {
  if (value === null || (typeof value === 'string' && value.trim() === '')) return null;
  if (typeof value !== 'string' || value.length > LONGEST_COMMAND || /[\0\n\r]/.test(value)) {
    refuse(`A command is one line of at most ${LONGEST_COMMAND} characters.`);
  }
  return value.trim();
}

function checkedChoice(name, value) {
  if (value === null || typeof value === 'boolean') return value;
  return refuse(`"${name}" must be true, false or null.`);
}

const isObject = (value) => value !== null && typeof value === 'object' && !Array.isArray(value);

/** What a file may hold is no more than what the API accepts; what does not pass is left out. */
function fromFile(text) {
  const stored = JSON.parse(text);
  if (!isObject(stored)) throw new Error('not an object');
  const settings = { folders: null, projects: {} };
  try {
    settings.folders = checkedFolders(stored.folders ?? null);
  } catch {
    settings.folders = null;
  }
  for (const [path, entry] of Object.entries(isObject(stored.projects) ? stored.projects : {})) {
    if (!isObject(entry)) continue;
    const kept = {};
    if (typeof entry.command === 'string') kept.command = entry.command;
    if (typeof entry.menubar === 'boolean') kept.menubar = entry.menubar;
    settings.projects[path] = kept;
  }
  return settings;
}

/**
 * The user's choices, kept in "settings.json" of the data directory. Emits "change" after every change. A change is
 * on the disk when its promise is fulfilled; when it could not be written it is undone and the promise is rejected.
 */
export class Settings extends EventEmitter {
  #file;
  #home;
  #value = { folders: null, projects: {} };

  /** Why the file cannot be read though it may be whole, in a sentence; or null. Nothing is changed meanwhile. */
  problem = null;

  #lastWrite = Promise.resolve();

  constructor({ dataDirectory, home }) {
    super();
    this.#file = join(dataDirectory, 'settings.json');
    this.#home = home;
    this.#load();
  }

  #load() {
    let text;
    try {
      text = readFileSync(this.#file, 'utf8');
    } catch (error) {
      this.problem = error.code === 'ENOENT' ? null : `The settings cannot be read (${error.code}).`;
      if (this.problem) console.error(`${this.problem} ${this.#file}`);
      return;
    }
    this.problem = null;
    try {
      this.#value = fromFile(text);
    } catch (error) {
      // Kept aside rather than overwritten by the next change: the user may want to mend it.
      console.error(`${this.#file} is damaged (${error.message}); it is kept as settings.json.damaged`);
      try {
        renameSync(this.#file, `${this.#file}.damaged`);
      } catch {
        // Then the next change replaces it.
      }
    }
  }

  /** The folders to look in, absolute: the user's own or, without any choice, the usual ones of the home directory. */
  get folders() {
    return this.#value.folders ?? DEFAULT_FOLDERS.map((name) => join(this.#home, name));
  }

  get foldersAreDefault() {
    return this.#value.folders === null;
  }

  /** The user's choices for one project: `command` and `menubar`, each absent without a choice. */
  project(path) {
    return Object.hasOwn(this.#value.projects, path) ? this.#value.projects[path] : {};
  }

  /** Sets the folders to look in; null goes back to the usual ones. */
  setFolders(folders) {
    const checked = checkedFolders(folders);
    return this.#change((value) => ({ ...value, folders: checked }));
  }

  /** Adds a folder to those to look in; of the usual ones those stay of which `isThere` says so. */
  addFolder(folder, isThere) {
    const [checked] = checkedFolders([folder]);
    return this.#change((value) => {
      const before = value.folders ?? this.folders.filter(isThere);
      return { ...value, folders: checkedFolders([...before, checked]) };
    });
  }

  /** Looks in a folder no longer. */
  removeFolder(folder, isThere) {
    return this.#change((value) => {
      const before = value.folders ?? this.folders.filter(isThere);
      return { ...value, folders: before.filter((known) => known !== folder) };
    });
  }

  /** Sets `command` and `menubar` of a project, each only when present in `patch`; null removes the choice. */
  setProject(path, patch) {
    const changes = {};
    if (patch.command !== undefined) changes.command = checkedCommand(patch.command);
    if (patch.menubar !== undefined) changes.menubar = checkedChoice('menubar', patch.menubar);
    return this.#change((value) => {
      const merged = Object.entries({ ...this.project(path), ...changes }).filter(([, choice]) => choice !== null);
      const projects = { ...value.projects };
      delete projects[path];
      if (merged.length > 0) projects[path] = Object.fromEntries(merged);
      return { ...value, projects };
    });
  }

  #change(change) {
    const write = this.#lastWrite.then(async () => {
      // What could not be read may be readable by now; what is not must not be replaced.
      if (this.problem) this.#load();
      if (this.problem) throw new Refusal('failed', `${this.problem} Nothing is changed.`);
      const next = change(this.#value);
      try {
        await writeFileAtomically(this.#file, `${JSON.stringify(next, null, 2)}\n`);
      } catch (error) {
        console.error(`Settings could not be written: ${error.message}`);
        throw new Refusal('failed', `The settings could not be saved (${error.code ?? error.message}).`);
      }
      this.#value = next;
      this.emit('change');
    });
    // One failed write must not fail the next.
    this.#lastWrite = write.catch(() => {});
    return write;
  }

  /** Fulfilled when nothing is being written any more. */
  settled() {
    return this.#lastWrite;
  }
}
