import { closeSync, constants, existsSync, fstatSync, openSync, readdirSync, readSync } from 'node:fs';
import { basename, join } from 'node:path';
import { parse as parseToml } from 'smol-toml';
import stripJsonComments from 'strip-json-comments';
import { parse as parseYaml } from 'yaml';

const LONGEST = 1024 * 1024;

/** Why a file says nothing, in a sentence for the user. */
export class Unreadable extends Error {}

function decoded(bytes) {
  if (bytes[0] === 0xff && bytes[1] === 0xfe) return bytes.toString('utf16le', 2);
  return bytes.toString('utf8').replace(/^\ufeff/, '');
}

/** The text of a file that is one and is not too long. Never waits for anybody: a named pipe has nothing to say. */
function readText(path, longest) {
  const name = basename(path);
  let descriptor;
  try {
    descriptor = openSync(path, constants.O_RDONLY | constants.O_NONBLOCK);
  } catch (error) {
    if (error.code === 'EACCES' || error.code === 'EPERM') throw new Unreadable(`You are not allowed to read ${name}.`);
    throw new Unreadable(`${name} cannot be read (${error.code}).`);
  }
  try {
    const status = fstatSync(descriptor);
    if (!status.isFile()) throw new Unreadable(`${name} is not a file.`);
    if (status.size > longest) throw new Unreadable(`${name} is too large to be read.`);
    const bytes = Buffer.alloc(status.size);
    return decoded(bytes.subarray(0, readSync(descriptor, bytes, 0, bytes.length, 0)));
  } finally {
    closeSync(descriptor);
  }
}

const isTable = (value) => value !== null && typeof value === 'object' && !Array.isArray(value);

const FORMATS = {
  JSON: (text) => JSON.parse(text),
  'JSON with comments': (text) => JSON.parse(stripJsonComments(text, { trailingCommas: true })),
  TOML: (text) => parseToml(text),
  YAML: (text) => parseYaml(text, { logLevel: 'error', maxAliasCount: 100 }),
};

/** A project's folder as its manifests' readers see it. What cannot be read is told once, as the folder's `problem`. */
export class Folder {
  #texts = new Map();
  problem = undefined;

  constructor(path) {
    this.path = path;
  }

  get name() {
    return basename(this.path);
  }

  /** The folder above, or null at the top. */
  get parent() {
    const parent = join(this.path, '..');
    return parent === this.path ? null : new Folder(parent);
  }

  has(relative) {
    return existsSync(join(this.path, relative));
  }

  /** The names in a folder below this one; none when it is not there. */
  list(relative = '.') {
    try {
      return readdirSync(join(this.path, relative));
    } catch {
      return [];
    }
  }

  /** The text of a file; empty when it cannot be read, which is told as a problem unless it is just not there. */
  text(relative) {
    if (!this.#texts.has(relative)) this.#texts.set(relative, this.#read(relative));
    return this.#texts.get(relative);
  }

  #read(relative) {
    if (!this.has(relative)) return '';
    try {
      return readText(join(this.path, relative), LONGEST);
    } catch (error) {
      this.problem ??= error instanceof Unreadable ? error.message : `${relative} cannot be read.`;
      return '';
    }
  }

  /** A file's table by its format; an empty one when it is no such table, which is told as a problem. */
  table(relative, format) {
    const before = this.problem;
    const text = this.text(relative);
    if (this.problem !== before) return {};
    if (!this.has(relative)) {
      this.problem ??= `${relative} cannot be read.`;
      return {};
    }
    try {
      // An empty YAML file is in order: it says nothing.
      const value = FORMATS[format](text) ?? {};
      if (isTable(value)) return value;
    } catch {
      // Told below.
    }
    this.problem ??= `${relative} is not valid ${format}.`;
    return {};
  }
}

/** `value` as a table, whatever it is. */
export const tableOr = (value) => (isTable(value) ? value : {});

/** `value` as a list, whatever it is. */
export const listOr = (value) => (Array.isArray(value) ? value : []);

/** Text that says something, or undefined. */
export const textOr = (value) => (typeof value === 'string' && value.trim() !== '' ? value.trim() : undefined);

/** The first of `names` that `table` has as a key of its own. */
export const firstOf = (names, table) => names.find((name) => Object.hasOwn(tableOr(table), name));
