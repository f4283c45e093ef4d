/** @import { View } from '../route.js' */
import { askForFolder, changeFolders, refreshEnvironment } from '../actions.js';
import { h } from 'preact';
import { icon } from '../icons.js';
import { copyable, pageHead, pathText, section } from '../parts.js';
import { store } from '../store.js';

const TOO_LARGE =
  'It holds so many folders that the deeper ones are left out. Choose those with your projects instead.';

function folderLine({ path, exists, isCut }, home) {
  const remove = () => changeFolders({ removeFolder: path });
  return h(
    'li',
    { key: path },
    icon('folder'),
    h('span', { class: 'mono grow' }, pathText(path, home)),
    !exists && h('span', { class: 'status off' }, 'Not there'),
    isCut && h('span', { class: 'status wait', title: TOO_LARGE }, 'Not looked through in full'),
    h(
      'button',
      { class: 'button quiet square small', type: 'button', 'aria-label': `Do not look in ${path}`, onClick: remove },
      icon('close', 14),
    ),
  );
}

/** @param {View} view */
export function settingsView({ overview }) {
  const { folders, foldersAreDefault, home, settingsProblem, environment } = overview;
  const { about } = store;
  return [
    pageHead('Settings', 'Kept on this machine, in your home folder.'),
    h(
      'div',
      { class: 'narrow stack-large', key: 'settings' },
      section(
        'Project folders',
        h('button', { class: 'button small', type: 'button', onClick: askForFolder }, 'Add a folder…'),
        settingsProblem && h('p', { class: 'status bad', role: 'alert' }, settingsProblem),
        folders.length > 0
          ? h(
              'ul',
              { class: 'panel lines' },
              folders.map((folder) => folderLine(folder, home)),
            )
          : h('p', { class: 'quiet-note' }, 'No folder is looked through. Add one, or go back to the usual ones.'),
        h(
          'p',
          { class: 'hint' },
          'Projects are found by their manifest files, up to four folders deep. Changes show by themselves. ',
          foldersAreDefault
            ? 'These are the usual places.'
            : h(
                'button',
                { class: 'link', type: 'button', onClick: () => changeFolders({ folders: null }) },
                'Go back to the usual places',
              ),
        ),
      ),
      section(
        'Environment',
        h('button', { class: 'button small', type: 'button', onClick: refreshEnvironment }, 'Read again'),
        environment.problem && h('p', { class: 'status bad', role: 'alert' }, environment.problem),
        h(
          'p',
          { class: 'hint' },
          `Projects start as they would in a terminal, in the environment that ${environment.shell} makes. It is read at the first start.`,
        ),
      ),
      section(
        'Menu bar',
        null,
        h(
          'p',
          { class: 'hint' },
          'Running projects are listed in the menu bar. To leave one out, open the project and turn off “Show in the menu bar”.',
        ),
      ),
      about &&
        section(
          'Where things are',
          null,
          h(
            'dl',
            { class: 'panel facts padded' },
            [
              ['Settings', `${about.dataDirectory}/settings.json`],
              ['Output of projects', `${about.dataDirectory}/logs/projects`],
              ['Server log', about.log],
            ].map(([what, path]) => [h('dt', null, what), h('dd', null, copyable(path, pathText(path, home)))]),
          ),
        ),
    ),
  ];
}
