/** @import { View } from '../route.js' */
import { askForFolder, saveFolders } from '../actions.js';
import { h } from 'preact';
import { icon } from '../icons.js';
import { copyable, pageHead, pathText, section } from '../parts.js';
import { store } from '../store.js';

function folderLine({ path, exists }, folders, home) {
  const remove = () =>
    saveFolders(folders.filter((folder) => folder.path !== path && folder.exists).map((folder) => folder.path));
  return h(
    'li',
    { key: path },
    icon('folder'),
    h('span', { class: 'mono grow' }, pathText(path, home)),
    !exists && h('span', { class: 'status off' }, 'Not there'),
    h(
      'button',
      { class: 'button quiet square small', type: 'button', 'aria-label': `Do not look in ${path}`, onClick: remove },
      icon('close', 14),
    ),
  );
}

/** @param {View} view */
export function settingsView({ overview }) {
  const { folders, foldersAreDefault, home } = overview;
  const { about } = store;
  return [
    pageHead('Settings', 'Kept on this machine, in your home folder.'),
    h(
      'div',
      { class: 'narrow stack-large', key: 'settings' },
      section(
        'Project folders',
        h('button', { class: 'button small', type: 'button', onClick: askForFolder }, 'Add a folder…'),
        folders.length > 0
          ? h(
              'ul',
              { class: 'panel lines' },
              folders.map((folder) => folderLine(folder, folders, home)),
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
                { class: 'link', type: 'button', onClick: () => saveFolders(null) },
                'Go back to the usual places',
              ),
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
