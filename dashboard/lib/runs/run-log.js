import { createWriteStream, openSync, closeSync, fstatSync, readSync, renameSync } from 'node:fs';

export const KEPT_IN_FILE = 2 * 1024 * 1024;
const KEPT_IN_MEMORY = 256 * 1024;

/** The end of a log file as text, from the start of a line; empty when there is none. */
export function readLogEnd(file, length = KEPT_IN_MEMORY) {
  let descriptor;
  try {
    descriptor = openSync(file, 'r');
  } catch {
    return '';
  }
  try {
    const { size } = fstatSync(descriptor);
    const buffer = Buffer.alloc(Math.min(size, length));
    readSync(descriptor, buffer, 0, buffer.length, size - buffer.length);
    const text = buffer.toString('utf8');
    return size > length ? text.slice(text.indexOf('\n') + 1) : text;
  } finally {
    closeSync(descriptor);
  }
}

/**
 * The output of one run: its end in memory for the page, all of it in a file that is turned over when it grows long
 * (the part before is kept once, with ".1" appended). Without a writable file the memory alone serves.
 */
export class RunLog {
  #file;
  #stream = null;
  #written = 0;
  #chunks = [];
  #length = 0;
  #followers = new Set();

  constructor(file) {
    this.#file = file;
    this.#open();
  }

  #open() {
    const stream = createWriteStream(this.#file, { flags: 'w', mode: 0o600 });
    stream.on('error', () => {
      if (this.#stream === stream) this.#stream = null;
    });
    this.#stream = stream;
    this.#written = 0;
  }

  /** Takes a chunk of output. When it answers with a stream, no more should be sent until that one has drained. */
  append(chunk) {
    const bytes = typeof chunk === 'string' ? Buffer.from(chunk) : chunk;
    this.#chunks.push({ bytes, at: performance.now() });
    this.#length += bytes.length;
    while (this.#length - this.#chunks[0].bytes.length > KEPT_IN_MEMORY) {
      this.#length -= this.#chunks.shift().bytes.length;
    }
    for (const follower of this.#followers) follower(bytes);
    if (!this.#stream) return null;
    if (this.#written > KEPT_IN_FILE) this.#turnOver();
    this.#written += bytes.length;
    return this.#stream.write(bytes) ? null : this.#stream;
  }

  #turnOver() {
    this.#stream.end();
    try {
      renameSync(this.#file, `${this.#file}.1`);
    } catch {
      // The file was removed by someone; a new one is begun all the same.
    }
    this.#open();
  }

  /** What is kept in memory, all of it or what came in the last `milliseconds`. */
  text(milliseconds = Infinity) {
    const earliest = performance.now() - milliseconds;
    return Buffer.concat(this.#chunks.filter(({ at }) => at >= earliest).map(({ bytes }) => bytes)).toString('utf8');
  }

  /** Calls `onChunk(bytes)` for all further output until the returned function is called. */
  follow(onChunk) {
    this.#followers.add(onChunk);
    return () => this.#followers.delete(onChunk);
  }

  close() {
    this.#stream?.end();
    this.#stream = null;
  }
}
