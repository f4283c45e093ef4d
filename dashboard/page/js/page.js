import './actions.js';
import { h, render } from 'preact';
import { header, sidebar } from './frame.js';
import { say } from './overlays.js';
import { empty, spinner } from './parts.js';
import { live } from './live.js';
import { routeOf } from './route.js';
import { setWindowTitle } from './shell.js';
import { onChange, store } from './store.js';
import { aboutView } from './views/about.js';
import { dockerView } from './views/docker.js';
import { homeView } from './views/home.js';
import { portsView } from './views/ports.js';
import { projectView } from './views/project.js';
import { servicesView } from './views/services.js';
import { settingsView } from './views/settings.js';

const VIEWS = {
  home: ['Dashboard', homeView],
  services: ['Services', servicesView],
  docker: ['Docker', dockerView],
  ports: ['Ports', portsView],
  settings: ['Settings', settingsView],
  about: ['About & Support', aboutView],
  project: ['Project', projectView],
};

let route = routeOf(location.hash);
let shownTitle = null;

function content() {
  const { overview, problem } = store;
  if (problem?.status === 401) {
    return empty(
      'warn',
      'This page has no key',
      'It was opened without the key that belongs to it. Open Harbrook, or the address that the server printed when it was started.',
    );
  }
  if (!overview) {
    return problem
      ? empty(
          'warn',
          'The server does not answer',
          'The page comes back by itself as soon as the Harbrook server answers again.',
        )
      : spinner('Loading…');
  }
  const [, view] = VIEWS[route.view] ?? [];
  return view
    ? view({ overview, route })
    : empty('search', 'There is no such view', 'Choose one of the views in the sidebar to go on.');
}

function titleOf() {
  if (route.view === 'project')
    return store.overview?.projects.find(({ path }) => path === route.path)?.name ?? 'Project';
  return VIEWS[route.view]?.[0] ?? '';
}

function draw() {
  const title = route.view === 'home' ? '' : titleOf();
  if (title !== shownTitle) {
    shownTitle = title;
    document.title = title === '' ? 'Harbrook' : `${title} – Harbrook`;
    setWindowTitle(title === '' ? '' : document.title);
  }
  const view = h('div', { class: `view view-${route.view}`, key: `${route.view} ${route.path ?? ''}` }, content());
  render(
    [
      header(route),
      h(
        'div',
        { class: 'body' },
        sidebar(route),
        h('main', { id: 'page', class: 'page', key: 'page', tabindex: '-1' }, view),
      ),
    ],
    document.getElementById('app'),
  );
}

/** Tells of projects that ended by themselves since the overview before. */
function tellOfFailures(before, after) {
  const runs = new Map((before?.projects ?? []).map(({ path, run }) => [path, run]));
  for (const { path, name, run } of after?.projects ?? []) {
    const earlier = runs.get(path);
    if (!earlier || earlier.ended || !run?.ended || run.stopping || run.startedAt !== earlier.startedAt) continue;
    if (run.code !== 0) say(`${name} ended with ${run.signal ?? `code ${run.code}`}.`, { isError: true });
  }
}

let before = null;
onChange(() => {
  tellOfFailures(before, store.overview);
  before = store.overview;
  draw();
});

window.addEventListener('hashchange', () => {
  route = routeOf(location.hash);
  draw();
  const page = document.getElementById('page');
  page.scrollTop = 0;
  // The keyboard goes on in the new view, unless it is just being used to search.
  if (document.activeElement?.id !== 'search') page.focus({ preventScroll: true });
});

window.addEventListener('keydown', (event) => {
  const typing = event.target instanceof Element && event.target.closest('input, textarea, select');
  if (event.key === '/' && !typing && !event.metaKey && !event.ctrlKey && !event.altKey) {
    event.preventDefault();
    document.getElementById('search').focus();
  }
});

draw();
live();
