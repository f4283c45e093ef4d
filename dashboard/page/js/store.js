import { get, stream } from './api.js';

// What the page knows (`overview`, from the server) and what the user is looking for (`search`, `filter`).
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

const RETRY_FIRST = 500;
const RETRY_LONGEST = 5000;

let loading = null;
let stale = false;

/** Fetches the overview; changes told of meanwhile make another fetch follow. */
export function refresh() {
  if (loading) {
    stale = true;
    return loading;
  }
  stale = false;
  loading = get('overview')
    .then((overview) => update({ overview, problem: null }))
    .finally(() => {
      loading = null;
    })
    .then(() => (stale ? refresh() : undefined));
  return loading;
}

const wait = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));

/** Listens to the server for as long as the page lives, and comes back after every interruption. */
export async function live() {
  let delay = RETRY_FIRST;
  let missed = false;
  document.addEventListener('visibilitychange', () => {
    if (document.hidden || !missed) return;
    missed = false;
    refresh().catch(() => {});
  });
  for (;;) {
    try {
      await stream('events', () => {
        delay = RETRY_FIRST;
        // A hidden page catches up when it is seen again.
        if (document.hidden && store.overview) missed = true;
        else refresh().catch((problem) => update({ problem }));
      });
      throw new Error('ended');
    } catch (error) {
      const problem = 'status' in error ? error : { status: 0, message: 'The Harbrook server does not answer.' };
      update({ problem });
      if (problem.status === 401) return;
    }
    await wait(delay);
    delay = Math.min(delay * 2, RETRY_LONGEST);
  }
}
