/** @import { View } from '../route.js' */
import { h } from 'preact';
import { pageHead, section } from '../parts.js';
import { isNative } from '../shell.js';
import { store } from '../store.js';
import { shortPath } from '../text.js';

const isApple = /Mac/.test(navigator.platform);
const modifier = isApple ? '⌘' : 'Ctrl+';

/** @type {[string[], string][]} */
const SHELL_KEYS = [
  [[`${modifier}1`], 'Dashboard'],
  [[`${modifier}2`], 'Services'],
  [[`${modifier}3`], 'Docker'],
  [[`${modifier}4`], 'Ports'],
  [[`${modifier},`], 'Settings'],
];
/** @type {[string[], string][]} */
const KEYS = [
  [['/'], 'Search projects'],
  [['↑', '↓'], 'Move through the list'],
  [['Esc'], 'Clear the search, close a dialog'],
];

/** @param {View} view */
export function aboutView({ overview }) {
  const { about } = store;
  return [
    pageHead('About & Support', about ? `Harbrook ${about.version}` : 'Harbrook'),
    h(
      'div',
      { class: 'narrow stack-large', key: 'about' },
      h(
        'p',
        { class: 'lead' },
        'Harbrook shows every project, port and version on this machine, and why a project will not start. ' +
          'It looks only at this machine and sends nothing anywhere.',
      ),
      section(
        'Keys',
        null,
        h(
          'dl',
          { class: 'panel facts padded keys' },
          [...(isNative() ? SHELL_KEYS : []), ...KEYS].map(([keys, what]) => [
            h(
              'dt',
              null,
              keys.map((key) => h('kbd', null, key)),
            ),
            h('dd', null, what),
          ]),
        ),
      ),
      section(
        'When something is wrong',
        null,
        h(
          'p',
          { class: 'hint' },
          'A project that ends on its own says why in its output, on its own page. What the dashboard itself has to tell is in its log: Help, Show Server Log',
          about ? `, or ${shortPath(about.log, overview.home)}.` : '.',
        ),
      ),
      about &&
        section(
          'This copy',
          null,
          h(
            'dl',
            { class: 'panel facts padded' },
            h('dt', null, 'Dashboard'),
            h('dd', null, about.version),
            h('dt', null, 'Node.js'),
            h('dd', null, about.node),
            h('dt', null, 'Address'),
            h('dd', { class: 'mono' }, location.host),
          ),
          h(
            'div',
            { class: 'actions start' },
            h('button', { class: 'button', type: 'button', onClick: () => window.openUpdate() }, 'Check for updates…'),
          ),
        ),
    ),
  ];
}
