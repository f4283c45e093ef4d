import { busy, copyText, startProject, stopProject } from './actions.js';
import { h } from 'preact';
import { icon } from './icons.js';
import { shortPath } from './text.js';

const GLYPHS = {
  'Node.js': ['JS', 'leaf'],
  TypeScript: ['TS', 'sky'],
  'Next.js': ['Nx', 'stone'],
  Nuxt: ['Nu', 'leaf'],
  SvelteKit: ['Sv', 'clay'],
  Astro: ['As', 'plum'],
  Angular: ['Ng', 'rose'],
  Remix: ['Rx', 'sky'],
  Electron: ['El', 'sky'],
  Vite: ['Vi', 'plum'],
  NestJS: ['Ne', 'rose'],
  Express: ['Ex', 'leaf'],
  Fastify: ['Fa', 'stone'],
  Deno: ['De', 'stone'],
  Rust: ['Rs', 'clay'],
  Go: ['Go', 'sky'],
  Python: ['Py', 'sand'],
  Django: ['Dj', 'leaf'],
  Ruby: ['Rb', 'rose'],
  Rails: ['Ra', 'rose'],
  PHP: ['Ph', 'plum'],
  Laravel: ['La', 'clay'],
  Elixir: ['Ex', 'plum'],
  Maven: ['Mv', 'clay'],
  Gradle: ['Gr', 'leaf'],
  Swift: ['Sw', 'clay'],
  Dart: ['Da', 'sky'],
  CMake: ['C+', 'stone'],
  Meson: ['Me', 'stone'],
  Compose: ['Dc', 'sky'],
};

/** The small square that stands for a project's kind. */
export function glyph(kind, isLarge = false) {
  const [letters, tint] = GLYPHS[kind] ?? [kind.slice(0, 2), 'stone'];
  return h('span', { class: `glyph tint-${tint}${isLarge ? ' large' : ''}`, 'aria-hidden': 'true' }, letters);
}

export function pageHead(title, subtitle, ...actions) {
  return h(
    'div',
    { class: 'head' },
    h('div', { class: 'head-text' }, h('h1', null, title), subtitle && h('p', { class: 'soft' }, subtitle)),
    actions.length > 0 && h('div', { class: 'actions' }, actions),
  );
}

export function section(title, aside, ...content) {
  return h(
    'section',
    { class: 'section', 'aria-label': title },
    h('div', { class: 'section-head' }, h('h2', null, title), aside),
    content,
  );
}

export function portLink(port) {
  return h(
    'a',
    {
      class: 'chip mono',
      href: `http://localhost:${port}`,
      target: '_blank',
      rel: 'noreferrer',
      title: `Open localhost:${port} in the browser`,
      'aria-label': `Open port ${port} in the browser`,
    },
    `:${port}`,
  );
}

export function portLinks(ports, most = 3) {
  const more = ports.length - most;
  return h(
    'span',
    { class: 'chips' },
    ports.slice(0, most).map(portLink),
    more > 0 && h('span', { class: 'faint' }, `+${more}`),
  );
}

/** Start, or stop, or nothing: what can be done with the project now. */
export function runButton(project, { isPrimary = false } = {}) {
  const { path, name, appRunning, running, run } = project;
  const waits = busy.has(path);
  const look = `button${isPrimary ? '' : ' small'}`;
  if (appRunning) {
    const stopping = run?.stopping ?? false;
    return h(
      'button',
      {
        class: look,
        type: 'button',
        'data-run': path,
        'aria-label': `Stop ${name}`,
        'aria-disabled': waits || stopping ? 'true' : null,
        onClick: () => stopping || stopProject(path),
      },
      icon('stop', 12),
      stopping ? 'Stopping…' : 'Stop',
    );
  }
  const command = project.ownCommand ?? project.foundCommand;
  if (!command) return null;
  return h(
    'button',
    {
      class: isPrimary && !running ? `${look} primary` : look,
      type: 'button',
      title: command,
      'data-run': path,
      'aria-label': `Start ${name}`,
      'aria-disabled': waits ? 'true' : null,
      onClick: () => startProject(path),
    },
    icon('play', 12),
    waits ? 'Starting…' : 'Start',
  );
}

/** The command that Start would run, for whoever is about to press it. */
export function startCommand({ appRunning, ownCommand, foundCommand }) {
  const command = ownCommand ?? foundCommand;
  return !appRunning && command && h('code', { class: 'start-command faint clip', title: command }, command);
}

/** In words and in colour how the project is doing. */
export function statusOf({ running, appRunning, run }) {
  if (run?.stopping && !run.ended) return { tone: 'wait', text: 'Stopping' };
  if (appRunning) return { tone: 'good', text: 'Running' };
  if (running) return { tone: 'good', text: 'Running elsewhere' };
  if (run?.ended && !run.stopping && (run.code !== 0 || run.signal)) {
    return { tone: 'bad', text: run.signal ? `Ended by ${run.signal}` : `Ended with code ${run.code}` };
  }
  return { tone: 'off', text: 'Not running' };
}

export function status(project) {
  const { tone, text } = statusOf(project);
  return h('span', { class: `status ${tone}` }, h('span', { class: 'dot', 'aria-hidden': 'true' }), text);
}

/** A path that is cut at its start when there is little room: its last part says most. */
export function pathText(path, home) {
  return h('span', { class: 'path', title: path }, h('bdi', null, shortPath(path, home)));
}

const CONTAINER_TONES = { running: 'good', restarting: 'wait', paused: 'wait', dead: 'bad' };

/** How a container is doing, in colour and in these words. */
export function containerStatus({ state }, words) {
  return h(
    'span',
    { class: `status ${CONTAINER_TONES[state] ?? 'off'}`, title: state },
    h('span', { class: 'dot', 'aria-hidden': 'true' }),
    h('span', { class: 'clip' }, words),
  );
}

export function copyable(text, shown = text) {
  return h(
    'span',
    { class: 'copyable' },
    h('code', { title: text }, shown),
    h(
      'button',
      {
        class: 'button quiet square small',
        type: 'button',
        'aria-label': `Copy ${text}`,
        onClick: () => copyText(text),
      },
      icon('copy', 14),
    ),
  );
}

export function empty(sign, title, text, ...actions) {
  return h(
    'div',
    { class: 'empty' },
    h('span', { class: 'empty-sign' }, icon(sign, 28)),
    h('h2', null, title),
    h('p', null, text),
    actions.length > 0 && h('div', { class: 'actions' }, actions),
  );
}

export const spinner = (label) =>
  h(
    'div',
    { class: 'waiting' },
    h('div', { class: 'spin', role: 'status', 'aria-label': label }),
    h('p', { class: 'soft' }, label),
  );
