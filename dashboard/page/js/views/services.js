/** @import { View } from '../route.js' */
import { h } from 'preact';
import { icon } from '../icons.js';
import { copyable, pageHead, pathText, spinner } from '../parts.js';
import { amount, count, listed } from '../text.js';

function servers(title, sign, entries, none) {
  return h(
    'section',
    { class: 'panel', 'aria-label': title, key: title },
    h(
      'div',
      { class: 'panel-head' },
      h('span', { class: 'sign' }, icon(sign)),
      h('h2', null, title),
      h(
        'span',
        { class: `status ${entries.length > 0 ? 'good' : 'off'}` },
        h('span', { class: 'dot', 'aria-hidden': 'true' }),
        entries.length > 0 ? count(entries.length, 'server') : 'Not running',
      ),
    ),
    entries.length === 0 ? h('p', { class: 'panel-text soft' }, none) : h('ul', { class: 'lines' }, entries),
  );
}

/** The container that publishes `port`, to be named beside the server that answers there. */
function containerAt(port, { containers = [] }) {
  return containers.find(({ ports }) => ports.some((mapping) => mapping.port === port))?.name;
}

function postgresLine({ port, socket, version, tls }, docker) {
  const address = socket ?? `localhost:${port}`;
  const container = containerAt(port, docker);
  return h(
    'li',
    { key: address },
    h('span', { class: 'strong' }, version ? `PostgreSQL ${version}` : 'PostgreSQL'),
    copyable(address),
    h(
      'span',
      { class: 'faint' },
      [container && `in ${container}`, socket ? 'Unix socket' : tls ? 'Offers TLS' : 'No TLS']
        .filter(Boolean)
        .join(' · '),
    ),
  );
}

function redisLine({ port, product, version, keys, needsPassword }, docker) {
  const container = containerAt(port, docker);
  const state = needsPassword ? 'Asks for a password' : keys !== null && count(keys, 'key');
  const about = [container && `in ${container}`, state].filter(Boolean).join(' · ');
  return h(
    'li',
    { key: String(port) },
    h('span', { class: 'strong' }, version ? `${product} ${version}` : product),
    copyable(`localhost:${port}`),
    h('span', { class: 'faint' }, about),
  );
}

/** @param {import('../../../types/api.js').Engine} engine */
function engine({ available, reason, version, socket, containers = [] }, home) {
  const running = containers.filter(({ state }) => state === 'running');
  const text = available
    ? [
        h(
          'li',
          { key: 'engine' },
          h('span', { class: 'strong' }, version ? `Engine ${version}` : 'Engine'),
          copyable(socket, pathText(socket, home)),
          h(
            'a',
            { class: 'link', href: '#/docker' },
            `${amount(running.length)} of ${count(containers.length, 'container')} running`,
          ),
        ),
      ]
    : [];
  return h(
    'section',
    { class: 'panel', 'aria-label': 'Containers', key: 'containers' },
    h(
      'div',
      { class: 'panel-head' },
      h('span', { class: 'sign' }, icon('docker')),
      h('h2', null, 'Containers'),
      h(
        'span',
        { class: `status ${available ? 'good' : reason ? 'bad' : 'off'}` },
        h('span', { class: 'dot', 'aria-hidden': 'true' }),
        available ? 'Running' : reason ? 'Not reachable' : 'Not running',
      ),
    ),
    available
      ? h('ul', { class: 'lines' }, text)
      : h(
          'p',
          { class: 'panel-text soft' },
          reason ?? 'No container engine was found. Start Docker, Podman, Colima or OrbStack, and it appears here.',
        ),
  );
}

/** @param {View} view */
export function servicesView({ overview }) {
  const { services } = overview;
  const subtitle = 'The databases and containers that answer on this machine.';
  if (!services.ready) return [pageHead('Services', subtitle), spinner('Asking the services of this machine…')];
  const found = [
    services.postgres.length > 0 && 'PostgreSQL',
    services.redis.length > 0 && 'Redis',
    services.docker.available && 'containers',
  ].filter(Boolean);
  return [
    pageHead('Services', found.length > 0 ? `Running on this machine: ${listed(found)}.` : subtitle),
    h(
      'div',
      { class: 'stack-panels', key: 'services' },
      servers(
        'PostgreSQL',
        'services',
        services.postgres.map((server) => postgresLine(server, services.docker)),
        'No PostgreSQL server answers on its usual ports or Unix sockets.',
      ),
      servers(
        'Redis',
        'bolt',
        services.redis.map((server) => redisLine(server, services.docker)),
        'No Redis or Valkey server answers on its usual ports.',
      ),
      engine(services.docker, overview.home),
    ),
  ];
}
