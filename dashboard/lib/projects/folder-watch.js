import { watch } from 'node:fs';

/**
 * Calls `onChange(event, name)` when something is made, removed or written directly in folder `path`. Returns the
 * watcher to close, or null when the system grants no further one.
 */
export function watchFolder(path, onChange) {
  try {
    const watcher = watch(path, (event, name) => onChange(event, name ?? ''));
    // A watched folder that goes away is noticed by the scan of the folder above it.
    watcher.on('error', () => watcher.close());
    return watcher;
  } catch {
    return null;
  }
}

/** Runs `task(key)` some time after `schedule(key)`, once for many calls, never more often than the spacing allows. */
export class Debouncer {
  #timers = new Map();
  #lastRun = new Map();

  constructor(task, { delay, spacing }) {
    this.task = task;
    this.delay = delay;
    this.spacing = spacing;
  }

  schedule(key) {
    if (this.#timers.has(key)) return;
    const earliest = (this.#lastRun.get(key) ?? -Infinity) + this.spacing;
    const wait = Math.max(this.delay, earliest - performance.now());
    const timer = setTimeout(() => {
      this.#timers.delete(key);
      this.#lastRun.set(key, performance.now());
      this.task(key);
    }, wait);
    this.#timers.set(key, timer);
  }

  forget(key) {
    clearTimeout(this.#timers.get(key));
    this.#timers.delete(key);
    this.#lastRun.delete(key);
  }

  close() {
    for (const timer of this.#timers.values()) clearTimeout(timer);
    this.#timers.clear();
  }
}
