// How the page keeps up with the server: it is told of changes by their revision, and then asks for what there is now.
// Whatever is lost, comes late or comes twice on the way, the page ends with the newest revision that it was told of.
import { get, stream } from './api.js';
import { store, update } from './store.js';

const RETRY_FIRST = 500;
const RETRY_LONGEST = 5000;
// The server says something every ten seconds at least.
const SILENCE = 30_000;

export const wait = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));

/** The times to wait between attempts: each twice the one before, up to a limit, and short again after a success. */
export function backOff() {
  let delay = RETRY_FIRST;
  return {
    succeeded() {
      delay = RETRY_FIRST;
    },
    async next() {
      const now = delay;
      delay = Math.min(delay * 2, RETRY_LONGEST);
      await wait(now);
    },
  };
}

let told = 0; // The last revision that the server told of,
let shown = 0; // and the one that is shown.

/** Shows an overview, unless a later one has been shown already. */
function take(overview) {
  if (overview.revision < shown) return;
  shown = overview.revision;
  update({ overview, problem: null });
}

async function load() {
  const attempts = backOff();
  for (;;) {
    again = false;
    const toldBefore = told;
    take(await get('overview'));
    if (!again && shown >= told) return;
    // That was an answer from before what it had been told already.
    if (shown < told && told === toldBefore) await attempts.next();
  }
}

let loading = null;
let again = false;

/** Fulfilled once what the server told of is shown. */
function keepUp() {
  loading ??= load().finally(() => {
    loading = null;
  });
  return loading;
}

/** Fetches the overview; fulfilled once one is shown that was asked for after this call. */
export function refresh() {
  again = true;
  return keepUp();
}

/** Makes of a stream's text a call for each revision in it, told whether it is the first. */
function revisionsIn(onRevision) {
  let rest = '';
  let isFirst = true;
  return (text) => {
    const events = (rest + text).split('\n\n');
    rest = events.pop();
    for (const event of events) {
      const match = /^data: (\d+)$/.exec(event);
      if (!match) continue;
      onRevision(Number(match[1]), isFirst);
      isFirst = false;
    }
  };
}

/** Listens to the server for as long as the page lives, and comes back after every interruption. */
export async function live() {
  const attempts = backOff();
  let connection = null;
  let problem = null;
  let missed = false;
  const catchUp = () => {
    missed = false;
    keepUp().then(attempts.succeeded, (error) => {
      problem = error;
      connection.abort();
    });
  };
  document.addEventListener('visibilitychange', () => {
    if (!document.hidden && missed) catchUp();
  });
  const hear = (revision, isFirst) => {
    // A server that has been started anew may count from less.
    if (isFirst) shown = Math.min(shown, revision);
    told = isFirst ? revision : Math.max(told, revision);
    if (!store.about)
      get('about').then(
        (about) => update({ about }),
        () => {},
      );
    if (shown === told && store.overview && !store.problem) return;
    // A hidden page catches up when it is seen again.
    if (document.hidden && store.overview) missed = true;
    else catchUp();
  };
  for (;;) {
    connection = new AbortController();
    // The first overview is asked for at once, and not only when the server tells of one.
    if (!store.overview && !store.problem) catchUp();
    problem = { status: 0, message: 'The Harbrook server does not answer.' };
    try {
      await stream('events', revisionsIn(hear), { patience: SILENCE, signal: connection.signal });
    } catch (error) {
      if (!connection.signal.aborted) problem = error;
    }
    update({ problem });
    if (problem.status === 401) return;
    await attempts.next();
  }
}
