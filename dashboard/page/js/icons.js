import { h } from './dom.js';

const PATHS = {
  sidebar: 'M2.5 3.5h11v9h-11zM6.5 3.500v9',
  search: 'M7 11.500a4.5 4.5 0 1 0 0-9 4.5 4.5 0 0 0 0 9zM10.3 10.3 13.5 13.5',
  home: 'M2.5 2.500h4.500v4.500h-4.500zM9 2.500h4.500v4.500H9zM2.5 9h4.500v4.500h-4.500zM9 9h4.500v4.500H9z',
  services: 'M8 2.500c3 0 5.5.9 5.5 2S11 6.5 8 6.500s-5.5-.9-5.5-2 2.5-2 5.5-2zM2.5 4.500v3.500c0 1.1 2.5 2 5.5 2s5.5-.9 5.5-2V4.500M2.5 8v3.500c0 1.1 2.5 2 5.5 2s5.5-.9 5.5-2V8',
  docker: 'M8 1.8 13.5 5v6L8 14.2 2.5 11V5zM2.7 5.1 8 8.200l5.3-3.100M8 8.200v6',
  ports: 'M5.5 2v3M10.5 2v3M3.5 5h9v2.500a4.5 4.5 0 0 1-9 0zM8 12v2.5',
  settings: 'M2.5 4.500h6M11.5 4.500h2M2.5 11.500h2M7.5 11.500h6M10 3v3M6 10v3',
  about: 'M8 14a6 6 0 1 0 0-12 6 6 0 0 0 0 12zM8 7.500v3.200M8 5.200v.1',
  play: 'M5 3.200v9.600l7.5-4.800z',
  stop: 'M4 4h8v8H4z',
  external: 'M6.5 3.500h-3v9h9v-3M9 2.500h4.500V7M13.2 2.8 7.5 8.5',
  copy: 'M5.5 5.500h8v8h-8zM10.5 5.500v-3h-8v8h3',
  folder: 'M1.8 12.800V3.500h4l1.5 1.800h6.900v7.500z',
  close: 'M4 4l8 8M12 4l-8 8',
  back: 'M9.5 3.5 5 8l4.5 4.5',
  warn: 'M8 2.2 14.5 13.500h-13zM8 6.500v3.500M8 11.700v.1',
  check: 'M3 8.5 6.5 12 13 4.5',
  terminal: 'M3 4.5 6.5 8 3 11.500M8.5 11.500H13',
  moon: 'M13 9.500A5.5 5.5 0 0 1 6.5 3 5.5 5.5 0 1 0 13 9.500z',
};

/** A drawn sign of 16 by 16; decoration only, so it needs text or a label beside it. */
export function icon(name, size = 16) {
  const solid = name === 'play' || name === 'stop';
  return h('svg', { class: solid ? 'icon solid' : 'icon', viewBox: '0 0 16 16', width: size, height: size, 'aria-hidden': 'true' },
    h('path', { d: PATHS[name] }));
}
