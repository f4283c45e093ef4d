/** @import { View } from '../route.js' */
import { h } from 'preact';
import { containerStatus, empty, pageHead, portLink, section, spinner } from '../parts.js';
import { hashOfProject } from '../route.js';
import { amount, count } from '../text.js';

function line(container) {
  const { id, name, image, state, status, ports } = container;
  return h(
    'tr',
    { key: id },
    h(
      'td',
      null,
      h(
        'span',
        { class: 'two-lines' },
        h('span', { class: 'strong clip', title: name }, name),
        h('span', { class: 'faint mono clip', title: image }, image),
      ),
    ),
    h('td', null, containerStatus(container, status || state)),
    h(
      'td',
      null,
      ports.length > 0
        ? h(
            'span',
            { class: 'chips' },
            ports.map(({ port, inside }) =>
              h(
                'span',
                { class: 'mapping', key: String(port) },
                portLink(port),
                port !== inside && h('span', { class: 'faint mono' }, `→ ${inside}`),
              ),
            ),
          )
        : h('span', { class: 'faint' }, '–'),
    ),
    h('td', { class: 'mono faint number' }, id),
  );
}

function group(title, containers, projectPath) {
  const aside = projectPath && h('a', { class: 'link', href: hashOfProject(projectPath) }, 'Show project');
  return section(
    title,
    aside,
    h(
      'div',
      { class: 'table-frame' },
      h(
        'table',
        { 'aria-label': title },
        h(
          'thead',
          null,
          h(
            'tr',
            null,
            h('th', { scope: 'col' }, 'Container'),
            h('th', { scope: 'col' }, 'State'),
            h('th', { scope: 'col' }, 'Ports'),
            h('th', { scope: 'col', class: 'number' }, 'Id'),
          ),
        ),
        h('tbody', null, containers.map(line)),
      ),
    ),
  );
}

/** @param {View} view */
export function dockerView({ overview }) {
  const { ready, docker } = overview.services;
  if (!ready) return [pageHead('Docker', 'The containers of this machine.'), spinner('Asking the container engine…')];
  if (!docker.available) {
    return [
      pageHead('Docker', 'The containers of this machine.'),
      docker.reason
        ? empty('warn', 'The container engine cannot be reached', docker.reason)
        : empty(
            'docker',
            'No container engine',
            'Start Docker, Podman, Colima or OrbStack. Its containers appear here with their state and their ports.',
          ),
    ];
  }
  const groups = new Map();
  for (const container of docker.containers) {
    const name = container.composeProject ?? '';
    groups.set(name, [...(groups.get(name) ?? []), container]);
  }
  const running = docker.containers.filter(({ state }) => state === 'running').length;
  const named = [...groups].filter(([name]) => name !== '').sort(([one], [other]) => one.localeCompare(other));
  return [
    pageHead(
      'Docker',
      docker.containers.length > 0
        ? `${amount(running)} of ${count(docker.containers.length, 'container')} running`
        : `Engine ${docker.version}`,
    ),
    docker.containers.length === 0 &&
      empty('docker', 'No containers', 'The engine is running and has no containers. Those you create appear here.'),
    h(
      'div',
      { class: 'stack-large', key: 'groups' },
      named.map(([name, containers]) => group(name, containers, containers[0].project)),
      groups.has('') && group(named.length > 0 ? 'Other containers' : 'Containers', groups.get(''), null),
    ),
  ];
}
