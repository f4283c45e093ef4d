import { h } from '../dom.js';
import { icon } from '../icons.js';
import { copyable, pageHead, spinner } from '../parts.js';
import { count, listed } from '../text.js';

function servers(title, sign, entries, none) {
  return h('section', { class: 'panel', 'aria-label': title, key: title },
    h('div', { class: 'panel-head' }, h('span', { class: 'sign' }, icon(sign)), h('h2', null, title),
      h('span', { class: `status ${entries.length > 0 ? 'good' : 'off'}` }, h('span', { class: 'dot', 'aria-hidden': 'true' }),
        entries.length > 0 ? count(entries.length, 'server') : 'Not running')),
    entries.length === 0 ? h('p', { class: 'panel-text soft' }, none) : h('ul', { class: 'lines' }, entries));
}

function postgresLine({ port, socket, version, tls }) {
  const address = socket ?? `localhost:${port}`;
  return h('li', { key: address }, h('span', { class: 'strong' }, version ? `PostgreSQL ${version}` : 'PostgreSQL'), copyable(address),
    h('span', { class: 'faint' }, socket ? 'Unix socket' : tls ? 'Offers TLS' : 'No TLS'));
}

function redisLine({ port, product, version, keys, needsPassword }) {
  const about = needsPassword ? 'Asks for a password' : keys === null ? '' : count(keys, 'key');
  return h('li', { key: String(port) }, h('span', { class: 'strong' }, version ? `${product} ${version}` : product), copyable(`localhost:${port}`),
    h('span', { class: 'faint' }, about));
}

function engine({ available, reason, version, socket, containers = [] }) {
  const running = containers.filter(({ state }) => state === 'running');
  const text = available
    ? [h('li', { key: 'engine' }, h('span', { class: 'strong' }, version ? `Engine ${version}` : 'Engine'), copyable(socket),
      h('a', { class: 'link', href: '#/docker' }, `${running.length} of ${count(containers.length, 'container')} running`))]
    : [];
  return h('section', { class: 'panel', 'aria-label': 'Containers', key: 'containers' },
    h('div', { class: 'panel-head' }, h('span', { class: 'sign' }, icon('docker')), h('h2', null, 'Containers'),
      h('span', { class: `status ${available ? 'good' : reason ? 'bad' : 'off'}` }, h('span', { class: 'dot', 'aria-hidden': 'true' }),
        available ? 'Running' : reason ? 'Not reachable' : 'Not running')),
    available ? h('ul', { class: 'lines' }, text)
      : h('p', { class: 'panel-text soft' }, reason ?? 'No container engine was found. Start Docker, Podman, Colima or OrbStack, and it appears here.'));
}

export function servicesView({ overview }) {
  const { services } = overview;
  const subtitle = 'The databases and containers that answer on this machine.';
  if (!services.ready) return [pageHead('Services', subtitle), spinner('Asking the services of this machine…')];
  const found = [
    services.postgres.length > 0 && 'PostgreSQL', services.redis.length > 0 && 'Redis', services.docker.available && 'containers',
  ].filter(Boolean);
  return [
    pageHead('Services', found.length > 0 ? `Running on this machine: ${listed(found)}.` : subtitle),
    h('div', { class: 'stack-panels', key: 'services' },
      servers('PostgreSQL', 'services', services.postgres.map(postgresLine), 'No PostgreSQL server answers on its usual ports or Unix sockets.'),
      servers('Redis', 'bolt', services.redis.map(redisLine), 'No Redis or Valkey server answers on its usual ports.'),
      engine(services.docker)),
  ];
}
