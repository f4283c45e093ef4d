import { constants } from 'node:fs';
import { access, open } from 'node:fs/promises';
import { basename, join } from 'node:path';
import { MANIFESTS } from './manifests.js';

const LONGEST_MANIFEST = 256 * 1024;

async function readStart(path) {
  // Without waiting: a named pipe that bears a manifest's name must not hold up the scan.
  const file = await open(path, constants.O_RDONLY | constants.O_NONBLOCK);
  try {
    const status = await file.stat();
    if (!status.isFile()) return '';
    const buffer = Buffer.alloc(Math.min(status.size, LONGEST_MANIFEST));
    const { bytesRead } = await file.read(buffer, 0, buffer.length, 0);
    return buffer.toString('utf8', 0, bytesRead);
  } finally {
    await file.close();
  }
}

const exists = (path) =>
  access(path).then(
    () => true,
    () => false,
  );

/**
 * What the manifests among `names` (the files of folder `path`) say of the project, or null when there is none.
 * The first manifest decides the kind; a later one fills in what the earlier ones leave open.
 */
export async function readProject(path, names) {
  const present = MANIFESTS.filter(([file]) => names.has(file));
  if (present.length === 0) return null;

  const known = new Set(names);
  if (names.has('Cargo.toml') && (await exists(join(path, 'src/main.rs')))) known.add('src/main.rs');

  const project = { path, folder: basename(path), manifests: present.map(([file]) => file) };
  for (const [file, read] of present) {
    let found;
    try {
      found = read(await readStart(join(path, file)), known);
    } catch {
      // A manifest that cannot be read still says what kind of project this is.
      found = read('', known);
    }
    for (const [key, value] of Object.entries(found)) project[key] ??= value;
  }
  project.name ??= project.folder;
  return project;
}
