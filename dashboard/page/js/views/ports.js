/** @import { View } from '../route.js' */
import { h } from 'preact';
import { empty, pageHead, portLink, section } from '../parts.js';
import { hashOfProject } from '../route.js';
import { count } from '../text.js';

const ANYWHERE = new Set(['0.0.0.0', '::']);
const LOOPBACK = new Set(['127.0.0.1', '::1']);

function reach(addresses) {
  if (addresses.some((address) => ANYWHERE.has(address))) return 'Every network';
  return addresses.every((address) => LOOPBACK.has(address)) ? 'This machine' : addresses.join(', ');
}

/** What listens there: its name and, where that says more, its command. */
function program({ process, container }) {
  if (container) return [container.name, container.image];
  return [process?.name ?? '–', process && process.command !== process.name ? process.command : null];
}

function line(entry, projects) {
  const { port, process, project } = entry;
  const isDashboard = String(port) === location.port;
  const [name, more] = isDashboard ? ['Harbrook', null] : program(entry);
  return h(
    'tr',
    { key: `${port} ${process?.pid ?? entry.user}` },
    h(
      'td',
      null,
      isDashboard || !entry.isForBrowsers ? h('span', { class: 'chip mono plain' }, `:${port}`) : portLink(port),
    ),
    h(
      'td',
      null,
      h(
        'span',
        { class: 'two-lines' },
        h('span', { class: 'strong clip', title: name }, name),
        more && h('span', { class: 'faint mono clip', title: more }, more),
      ),
    ),
    h(
      'td',
      null,
      project
        ? h('a', { class: 'link', href: hashOfProject(project) }, projects.get(project) ?? project)
        : h('span', { class: 'faint' }, '–'),
    ),
    h('td', null, reach(entry.addresses)),
    h('td', { class: 'mono number' }, process ? String(process.pid) : h('span', { class: 'faint' }, entry.user ?? '–')),
  );
}

function table(label, entries, projects, last) {
  return h(
    'div',
    { class: 'table-frame' },
    h(
      'table',
      { 'aria-label': label },
      h(
        'thead',
        null,
        h(
          'tr',
          null,
          ['Port', 'Program', 'Project', 'Reachable from'].map((title) => h('th', { scope: 'col' }, title)),
          h('th', { scope: 'col', class: 'number' }, last),
        ),
      ),
      h(
        'tbody',
        null,
        entries.map((entry) => line(entry, projects)),
      ),
    ),
  );
}

/** @param {View} view */
export function portsView({ overview }) {
  const { ports } = overview;
  const projects = new Map(overview.projects.map(({ path, name }) => [path, name]));
  const isOwn = (entry) => Boolean((entry.own && entry.process) || entry.container);
  const own = ports.filter(isOwn);
  const others = ports.filter((entry) => !isOwn(entry));
  const programs = new Set(own.map(({ process, container }) => container?.name ?? process.pid)).size;
  return [
    pageHead(
      'Ports',
      own.length > 0
        ? `${count(own.length, 'port')} held by ${count(programs, 'program')} of yours`
        : 'The TCP ports on which programs of this machine listen.',
    ),
    own.length > 0
      ? table('Your ports', own, projects, 'Process')
      : empty(
          'ports',
          'Nothing is listening',
          'When one of your programs opens a TCP port, it appears here with its process and its project.',
        ),
    others.length > 0 && section('Other users and the system', null, table('Other ports', others, projects, 'User')),
  ];
}
