/** @import { View } from '../route.js' */
import { chosen, saveProject } from '../actions.js';
import { h } from 'preact';
import { icon } from '../icons.js';
import { logView } from '../log-view.js';
import {
  containerStatus,
  copyable,
  empty,
  glyph,
  pathText,
  portLink,
  runButton,
  startCommand,
  section,
  spinner,
  status,
} from '../parts.js';
import { store } from '../store.js';
import { clock, period } from '../text.js';

function notices(project) {
  const troubles = [project.problem, ...(project.run?.ended ? (project.run.hints ?? []) : [])].filter(Boolean);
  const advice =
    project.needsInstall && !project.running
      ? ['Its dependencies are not installed yet: there is no node_modules folder.']
      : [];
  const line = (tone) => (text) =>
    h('li', { class: tone }, icon(tone === 'bad' ? 'warn' : 'about'), h('span', null, text));
  return (
    troubles.length + advice.length > 0 &&
    h('ul', { class: 'notices', key: 'notices' }, troubles.map(line('bad')), advice.map(line('mild')))
  );
}

/** What is typed there stays, whatever arrives meanwhile, until it is saved. */
function commandForm({ path, ownCommand, foundCommand }) {
  const save = async (form, command, saved) => {
    if (await saveProject(path, { command }, saved)) form.reset();
  };
  return h(
    'form',
    {
      class: 'stack',
      key: `command ${path}`,
      onSubmit(event) {
        event.preventDefault();
        const form = /** @type {HTMLFormElement} */ (event.currentTarget);
        const typed = form.elements['command'].value.trim();
        save(form, typed === '' || typed === foundCommand ? null : typed, 'Start command saved.');
      },
    },
    h(
      'div',
      { class: 'input-row' },
      h('input', {
        name: 'command',
        class: 'input mono',
        'aria-label': 'Start command',
        spellcheck: false,
        autocomplete: 'off',
        placeholder: 'npm run dev',
        defaultValue: ownCommand ?? foundCommand ?? '',
      }),
      h('button', { class: 'button', type: 'submit' }, 'Save'),
    ),
    h(
      'p',
      { class: 'hint' },
      ownCommand
        ? [
            'Typed by you. ',
            foundCommand &&
              h(
                'button',
                {
                  class: 'link',
                  type: 'button',
                  onClick: (event) => save(event.currentTarget.form, null, 'Back to the project’s own command.'),
                },
                `Use “${foundCommand}” instead`,
              ),
          ]
        : foundCommand
          ? 'Read from the project’s manifest. Type another one to replace it.'
          : 'The manifest names none. Type the command that starts the project.',
    ),
  );
}

function facts(project) {
  const { run, manifests } = project;
  return h(
    'dl',
    { class: 'facts' },
    h('dt', null, 'Kind'),
    h('dd', null, project.kind),
    h('dt', null, 'Version'),
    h('dd', null, project.version ?? '–'),
    h('dt', null, 'Found by'),
    h('dd', null, manifests.join(', ')),
    run &&
      !run.ended && [
        h('dt', null, 'Started'),
        h('dd', null, clock(run.startedAt)),
        h('dt', null, 'Process'),
        h('dd', { class: 'mono' }, String(run.pid)),
      ],
    run?.ended && [h('dt', null, 'Last run'), h('dd', null, period(run.startedAt, run.endedAt))],
  );
}

function portsOf({ ports, appRunning, running }) {
  if (ports.length > 0) return h('div', { class: 'chips' }, ports.map(portLink));
  return h(
    'p',
    { class: 'hint' },
    appRunning ? 'It listens on no port yet.' : running ? '' : 'None while it is not running.',
  );
}

function containersOf(path, { docker }) {
  const own = docker.containers.filter(({ project }) => project === path);
  if (own.length === 0) return null;
  return section(
    'Containers',
    h('a', { class: 'link', href: '#/docker' }, 'Show all'),
    h(
      'ul',
      { class: 'stack-small' },
      own.map((container) =>
        h(
          'li',
          { class: 'between', key: container.id },
          containerStatus(container, container.name),
          h(
            'span',
            { class: 'chips' },
            container.ports.map(({ port }) => portLink(port)),
          ),
        ),
      ),
    ),
  );
}

function menuBarSwitch(project) {
  const { path } = project;
  return h(
    'label',
    { class: 'switch-row' },
    h('span', null, 'Show in the menu bar'),
    h('input', {
      type: 'checkbox',
      class: 'switch',
      role: 'switch',
      checked: { ...project, ...chosen.get(path) }.menubar !== false,
      onChange: (event) =>
        saveProject(
          path,
          { menubar: event.currentTarget.checked ? null : false },
          event.currentTarget.checked ? 'Shown in the menu bar.' : 'Hidden from the menu bar.',
        ),
    }),
  );
}

/** @param {View} view */
export function projectView({ overview, route }) {
  const project = overview.projects.find(({ path }) => path === route.path);
  const back = h('a', { class: 'back', href: '#/', key: 'back' }, icon('back', 14), 'Dashboard');
  if (!project) {
    if (!overview.ready) return [back, spinner('Looking for your projects…')];
    return [
      back,
      empty(
        'folder',
        'This project is not here',
        `There is no project at ${route.path}. It may have been moved or removed, or its folder is not looked through any more.`,
      ),
    ];
  }
  const { path, run } = project;
  return [
    back,
    h(
      'div',
      { class: 'head', key: 'head' },
      glyph(project.kind, true),
      h(
        'div',
        { class: 'head-text' },
        h('h1', null, project.name, project.version && [' ', h('span', { class: 'version' }, project.version)]),
        h('div', { class: 'head-line' }, status(project), copyable(path, pathText(path, store.overview.home))),
      ),
      h('div', { class: 'actions' }, startCommand(project), runButton(project, { isPrimary: true })),
    ),
    notices(project),
    h(
      'div',
      { class: 'columns', key: 'columns' },
      h(
        'section',
        { class: 'panel log-panel', 'aria-label': 'Output' },
        h(
          'div',
          { class: 'panel-head' },
          h('h2', null, 'Output'),
          run?.command && h('code', { class: 'faint clip' }, run.command),
        ),
        logView(path, run),
      ),
      h(
        'div',
        { class: 'aside' },
        section('Ports', null, portsOf(project)),
        section('Start command', null, commandForm(project)),
        containersOf(path, overview.services),
        section('Menu bar', null, menuBarSwitch(project)),
        section('Details', null, facts(project)),
      ),
    ),
  ];
}
