import { isShownWhole, shownText } from '../text.js';
import { Folder } from './folder.js';
import * as compiled from './kinds/compiled.js';
import * as javascript from './kinds/javascript.js';
import * as python from './kinds/python.js';
import * as tasks from './kinds/tasks.js';
import * as web from './kinds/web.js';
import { manifestsAmong } from './manifests.js';

const LONGEST_VERSION = 60;
const LONGEST_COMMAND = 1000;
const READERS = { ...compiled, ...javascript, ...python, ...tasks, ...web };

/**
 * What is known of a project: what may be missing is what its manifests leave open.
 * @typedef {{ path: string, name: string, kind: string, manifests: string[], isWeak: boolean, version?: string,
 *   command?: string, needsInstall?: boolean, problem?: string }} FoundProject
 */

/**
 * What may be shown of what a manifest says: it was written by anybody.
 * @param {any} found
 * @returns {FoundProject}
 */
function presentable({ name, version, command, ...rest }, folder) {
  const project = { ...rest, name: shownText(name ?? '') || shownText(folder.name) || 'Project' };
  if (version !== undefined) project.version = shownText(version, LONGEST_VERSION);
  if (command !== undefined && isShownWhole(command, LONGEST_COMMAND)) project.command = command;
  return project;
}

/**
 * What the manifests among `names` (files of folder `path`) say of the project, or null when there is none. The first
 * manifest decides the kind; a later one fills in what the earlier ones leave open. It waits for the disk and takes the
 * time that the texts take, however malicious.
 * @returns {FoundProject | null}
 */
export function readProject(path, names) {
  const present = manifestsAmong(names);
  if (present.length === 0) return null;
  const folder = new Folder(path);
  const files = present.map(({ file }) => file);
  /** @type {any} */
  const project = { path, manifests: files, isWeak: present.every(({ manifest }) => manifest.isWeak ?? false) };
  for (const { file, manifest } of present) {
    const found = READERS[manifest.reader](folder, file);
    project.kind ??= found.kind ?? manifest.kind;
    for (const [key, value] of Object.entries(found)) if (value !== undefined) project[key] ??= value;
  }
  project.problem = folder.problem;
  return presentable(project, folder);
}
