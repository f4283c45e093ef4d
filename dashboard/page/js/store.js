/** @import { About, Overview } from '../../types/api.js' */

// What the page knows (`overview`, from the server) and what the user is looking for (`search`, `filter`).
/** @type {{ overview: Overview, about: About, problem: { status: number, message: string }, search: string, filter: string }} */
export const store = {
  overview: null,
  about: null,
  problem: null, // The ApiError of the last attempt, while it lasts.
  search: '',
  filter: 'all',
};

const listeners = new Set();
let scheduled = false;

/** Calls `listener(before)` after changes; `before` is the overview of the call before. */
export function onChange(listener) {
  listeners.add(listener);
}

/** Applies `changes` to the store and has the page drawn again soon, once for many changes. */
export function update(changes) {
  Object.assign(store, changes);
  if (scheduled) return;
  scheduled = true;
  queueMicrotask(() => {
    scheduled = false;
    for (const listener of listeners) listener();
  });
}
