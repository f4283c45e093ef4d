import { h } from 'preact';

const PATHS = {
  sidebar: 'M2.5 3.5h11v9h-11zM6.5 3.5v9',
  search: 'M7 11.5a4.5 4.5 0 1 0 0-9 4.5 4.5 0 0 0 0 9zM10.3 10.3 13.5 13.5',
  home: 'M2.5 2.5h4.5v4.5h-4.5zM9 2.5h4.5v4.5H9zM2.5 9h4.5v4.5h-4.5zM9 9h4.5v4.5H9z',
  services:
    'M8 2.5c3 0 5.5.9 5.5 2S11 6.5 8 6.5s-5.5-.9-5.5-2 2.5-2 5.5-2zM2.5 4.5v3.5c0 1.1 2.5 2 5.5 2s5.5-.9 5.5-2V4.5M2.5 8v3.5c0 1.1 2.5 2 5.5 2s5.5-.9 5.5-2V8',
  docker: 'M8 1.8 13.5 5v6L8 14.2 2.5 11V5zM2.7 5.1 8 8.2l5.3-3.1M8 8.2v6',
  ports: 'M5.5 2v3M10.5 2v3M3.5 5h9v2.5a4.5 4.5 0 0 1-9 0zM8 12v2.5',
  settings: 'M2.5 4.5h6M11.5 4.5h2M2.5 11.5h2M7.5 11.5h6M10 3v3M6 10v3',
  about: 'M8 14a6 6 0 1 0 0-12 6 6 0 0 0 0 12zM8 7.5v3.2M8 5.2v.1',
  play: 'M5 3.2v9.6l7.5-4.8z',
  stop: 'M4 4h8v8H4z',
  external: 'M6.5 3.5h-3v9h9v-3M9 2.5h4.5V7M13.2 2.8 7.5 8.5',
  copy: 'M5.5 5.5h8v8h-8zM10.5 5.5v-3h-8v8h3',
  folder: 'M1.8 12.8V3.5h4l1.5 1.8h6.9v7.5z',
  close: 'M4 4l8 8M12 4l-8 8',
  back: 'M9.5 3.5 5 8l4.5 4.5',
  warn: 'M8 2.2 14.5 13.5h-13zM8 6.5v3.5M8 11.7v.1',
  check: 'M3 8.5 6.5 12 13 4.5',
  bolt: 'M9 1.8 3.5 9H8l-1 5.2L12.5 7H8z',
};

/** A drawn sign of 16 by 16; decoration only, so it needs text or a label beside it. */
export function icon(name, size = 16) {
  const solid = name === 'play' || name === 'stop';
  return h(
    'svg',
    { class: solid ? 'icon solid' : 'icon', viewBox: '0 0 16 16', width: size, height: size, 'aria-hidden': 'true' },
    h('path', { d: PATHS[name] }),
  );
}
