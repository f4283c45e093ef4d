/** @import { View } from '../route.js' */
import { askForFolder } from '../actions.js';
import { h } from 'preact';
import {
  empty,
  glyph,
  pageHead,
  portLinks,
  runButton,
  section,
  spinner,
  startCommand,
  status,
  statusOf,
} from '../parts.js';
import { hashOfProject } from '../route.js';
import { store, update } from '../store.js';
import { amount, count, folderOf, listed, shortPath } from '../text.js';

const FILTERS = [
  ['all', 'All'],
  ['running', 'Running'],
  ['startable', 'Can be started'],
];

function matches(project) {
  if (store.filter === 'running' && !project.running) return false;
  if (store.filter === 'startable' && !(project.ownCommand ?? project.foundCommand)) return false;
  const words = store.search.toLowerCase().split(/\s+/).filter(Boolean);
  const text = `${project.name} ${project.path} ${project.kind} ${project.ports.join(' ')}`.toLowerCase();
  return words.every((word) => text.includes(word));
}

function tile(href, value, label) {
  return h(
    href ? 'a' : 'div',
    { class: 'tile', href, key: label },
    h('strong', { class: value === 0 ? 'none' : null }, amount(value)),
    ' ',
    h('span', null, label),
  );
}

function tiles({ stats, ports }) {
  const own = new Set(ports.filter((entry) => entry.own || entry.container).map(({ port }) => port)).size;
  return h(
    'div',
    { class: 'tiles' },
    tile(null, stats.running, 'Running'),
    tile('#/ports', own, 'Ports in use'),
    tile('#/services', stats.postgres, 'PostgreSQL'),
    tile('#/services', stats.redis, 'Redis'),
    tile('#/docker', stats.containers, 'Containers'),
  );
}

function card(project) {
  return h(
    'article',
    { class: 'card link-card', key: project.path },
    h(
      'div',
      { class: 'card-head' },
      glyph(project.kind),
      h(
        'div',
        { class: 'two-lines' },
        h('a', { class: 'cover strong', href: hashOfProject(project.path), 'data-step': true }, project.name),
        h('span', { class: 'faint' }, [project.kind, project.version].filter(Boolean).join(' · ')),
      ),
      status(project),
    ),
    h(
      'div',
      { class: 'card-foot' },
      project.ports.length > 0 ? portLinks(project.ports) : h('span', { class: 'faint' }, 'No port yet'),
      runButton(project),
    ),
  );
}

function row(project, home) {
  const { tone, text } = statusOf(project);
  return h(
    'li',
    { class: 'row', key: project.path },
    glyph(project.kind),
    h(
      'div',
      { class: 'two-lines grow' },
      h(
        'a',
        { class: 'cover strong', href: hashOfProject(project.path), 'data-step': true },
        project.name,
        project.version && [' ', h('span', { class: 'version' }, project.version)],
      ),
      h('span', { class: 'faint clip', title: project.path }, shortPath(folderOf(project.path), home)),
    ),
    project.problem &&
      tone === 'off' &&
      h('span', { class: 'status bad' }, h('span', { class: 'dot', 'aria-hidden': 'true' }), 'Broken manifest'),
    tone !== 'off' && h('span', { class: `status ${tone}` }, h('span', { class: 'dot', 'aria-hidden': 'true' }), text),
    project.ports.length > 0 && portLinks(project.ports),
    h('span', { class: 'kind' }, project.kind),
    h('span', { class: 'row-command' }, startCommand(project)),
    h('span', { class: 'row-action' }, runButton(project)),
  );
}

function stepThroughList(event) {
  if (event.key !== 'ArrowDown' && event.key !== 'ArrowUp') return;
  const steps = [...event.currentTarget.querySelectorAll('[data-step]')];
  const at = steps.indexOf(document.activeElement);
  const next = steps[at + (event.key === 'ArrowDown' ? 1 : -1)];
  if (at < 0 || !next) return;
  event.preventDefault();
  next.focus();
}

function filters() {
  return h(
    'div',
    { class: 'segments', role: 'group', 'aria-label': 'Show' },
    FILTERS.map(([name, title]) =>
      h(
        'button',
        {
          type: 'button',
          key: name,
          'aria-pressed': String(store.filter === name),
          onClick: () => update({ filter: name }),
        },
        title,
      ),
    ),
  );
}

function noProjects({ folders, home }) {
  const present = folders.filter(({ exists }) => exists);
  const where =
    present.length > 0
      ? `Nothing that looks like a project was found in ${listed(present.map(({ path }) => shortPath(path, home)))}.`
      : `Harbrook looks in ${listed(folders.map(({ path }) => shortPath(path, home)))}; none of them is there.`;
  return empty(
    'folder',
    'No projects yet',
    `${where} Choose the folder that holds your projects, and they will appear here.`,
    h('button', { class: 'button primary', type: 'button', onClick: askForFolder }, 'Choose a folder…'),
  );
}

/** @param {View} view */
export function homeView({ overview }) {
  const { projects, folders, home, ready } = overview;
  if (projects.length === 0) {
    return [
      pageHead('Dashboard', 'Your projects, and what they are doing.'),
      ready ? [tiles(overview), noProjects(overview)] : spinner('Looking for your projects…'),
    ];
  }
  const present = folders.filter(({ exists }) => exists).map(({ path }) => shortPath(path, home));
  const searching = store.search.trim() !== '' || store.filter !== 'all';
  const running = searching ? [] : projects.filter((project) => project.running);
  const others = searching ? projects.filter(matches) : projects.filter((project) => !project.running);
  const title = searching
    ? count(others.length, 'match', 'matches')
    : running.length > 0
      ? 'Other projects'
      : 'Projects';
  return [
    pageHead('Dashboard', `${count(projects.length, 'project')} in ${listed(present)}`),
    tiles(overview),
    h(
      'div',
      { class: 'stack-large', key: 'lists', onKeydown: stepThroughList },
      running.length > 0 && section('Running', null, h('div', { class: 'cards' }, running.map(card))),
      section(
        title,
        filters(),
        others.length > 0
          ? h(
              'ul',
              { class: 'rows' },
              others.map((project) => row(project, home)),
            )
          : h(
              'p',
              { class: 'quiet-note' },
              searching ? 'No project matches. Try fewer letters, or show all.' : 'Every project is running.',
            ),
      ),
    ),
  ];
}
