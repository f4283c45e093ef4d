import { h } from 'preact';
import { icon } from './icons.js';
import { hashOfProject } from './route.js';
import { actAsTitleBar } from './shell.js';
import { store, update } from './store.js';
import { amount } from './text.js';

const PLACES = [
  ['home', '#/', 'Dashboard', 'home'],
  ['services', '#/services', 'Services', 'services'],
  ['docker', '#/docker', 'Docker', 'docker'],
  ['ports', '#/ports', 'Ports', 'ports'],
];
const OTHER_PLACES = [
  ['settings', '#/settings', 'Settings', 'settings'],
  ['about', '#/about', 'About & Support', 'about'],
];

const REMEMBERED = 'harbrook.sidebar';
const narrow = matchMedia('(max-width: 760px)');

export const frame = {
  sidebarShown: (localStorage.getItem(REMEMBERED) ?? (narrow.matches ? 'hidden' : 'shown')) === 'shown',
};

function toggleSidebar() {
  frame.sidebarShown = !frame.sidebarShown;
  localStorage.setItem(REMEMBERED, frame.sidebarShown ? 'shown' : 'hidden');
  update({});
}

function search(route) {
  return h(
    'label',
    { class: 'search' },
    icon('search', 14),
    h('input', {
      id: 'search',
      type: 'search',
      placeholder: 'Search projects',
      'aria-label': 'Search projects',
      autocomplete: 'off',
      spellcheck: false,
      value: store.search,
      onInput(event) {
        if (route.view !== 'home') location.hash = '#/';
        update({ search: event.currentTarget.value });
      },
      onKeydown(event) {
        if (event.key === 'Escape') {
          event.currentTarget.value = '';
          update({ search: '' });
          event.currentTarget.blur();
        } else if (event.key === 'Enter' || event.key === 'ArrowDown') {
          /** @type {HTMLElement} */
          const first = document.querySelector('#page [data-step]');
          first?.focus();
          if (event.key === 'Enter' && store.search !== '') first?.click();
          event.preventDefault();
        }
      },
    }),
    h('kbd', { 'aria-hidden': 'true' }, '/'),
  );
}

export function header(route) {
  return h(
    'header',
    { class: 'bar', ref: actAsTitleBar },
    h(
      'button',
      {
        id: 'toggleSide',
        class: 'button quiet square',
        type: 'button',
        'aria-label': 'Sidebar',
        'aria-controls': 'side',
        'aria-expanded': String(frame.sidebarShown),
        title: 'Show or hide the sidebar',
        onClick: toggleSidebar,
      },
      icon('sidebar'),
    ),
    h('span', { class: 'wordmark' }, 'Harbrook'),
    h('span', { class: 'bar-space' }),
    store.overview && store.problem && h('span', { class: 'pill', role: 'status' }, 'Reconnecting…'),
    search(route),
  );
}

/** @param {string[]} entry */
function place([view, hash, title, sign], current, badge) {
  return h(
    'a',
    { key: view, class: 'place', href: hash, 'aria-current': view === current ? 'page' : null },
    icon(sign),
    h('span', { class: 'place-name' }, title),
    badge > 0 && h('span', { class: 'badge' }, amount(badge)),
  );
}

export function sidebar(route) {
  const { overview } = store;
  const running = (overview?.projects ?? []).filter((project) => project.running);
  const badges = overview ? { docker: overview.stats.containers } : {};
  return h(
    'nav',
    { id: 'side', key: 'side', class: 'side', 'aria-label': 'Views', hidden: !frame.sidebarShown },
    h(
      'div',
      { class: 'places' },
      PLACES.map((entry) => place(entry, route.view, badges[entry[0]])),
    ),
    running.length > 0 &&
      h(
        'div',
        { class: 'places side-running', key: 'running' },
        h('h2', { class: 'side-title' }, 'Running'),
        running.map(({ path, name }) =>
          h(
            'a',
            {
              key: path,
              class: 'place',
              href: hashOfProject(path),
              title: path,
              'aria-current': route.path === path ? 'page' : null,
            },
            h('span', { class: 'dot good', 'aria-hidden': 'true' }),
            h('span', { class: 'place-name' }, name),
          ),
        ),
      ),
    h(
      'div',
      { class: 'places side-foot', key: 'foot' },
      OTHER_PLACES.map((entry) => place(entry, route.view)),
    ),
  );
}
