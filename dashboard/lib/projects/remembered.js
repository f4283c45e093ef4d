import { readFileSync } from 'node:fs';
import { writeFileAtomically } from '../atomic-file.js';

const LARGEST = 4 * 1024 * 1024;

const isProject = (entry) =>
  ['path', 'name', 'kind'].every((key) => typeof entry?.[key] === 'string') && Array.isArray(entry.manifests);

/**
 * The projects as they were when the dashboard last ended, to be shown at the next start until its folders have been
 * looked through. A file that is missing, damaged or of other folders is as good as none.
 */
export class Remembered {
  #file;
  #written = null;
  #writing = Promise.resolve();

  constructor(file) {
    this.#file = file;
  }

  /** The projects that were found below just these folders. */
  read(folders) {
    try {
      const text = readFileSync(this.#file, 'utf8');
      if (text.length > LARGEST) return [];
      const kept = JSON.parse(text);
      if (JSON.stringify(kept.folders) !== JSON.stringify(folders)) return [];
      this.#written = text;
      return kept.projects.filter(isProject);
    } catch {
      return [];
    }
  }

  /** Fulfilled when they are on the disk, or when that has failed. */
  write(folders, projects) {
    const text = JSON.stringify({ folders, projects });
    if (text !== this.#written && text.length <= LARGEST) {
      this.#written = text;
      this.#writing = this.#writing
        .then(() => writeFileAtomically(this.#file, text))
        .catch((error) => console.error(`The projects could not be kept for the next start: ${error.message}`));
    }
    return this.#writing;
  }
}
