import { post } from './api.js';
import { refresh } from './live.js';
import { openModal, say } from './overlays.js';
import { isNative, pickFolder, stateChanged } from './shell.js';
import { store, update } from './store.js';
import { h } from 'preact';

/** The projects with a request under way, so that their buttons wait. */
export const busy = new Set();

async function attempt(task) {
  try {
    await task();
    return true;
  } catch (error) {
    say(error.message, { isError: true });
    return false;
  }
}

// How long to wait for the answer, in milliseconds: a stop answers at the end of what it stops.
const PATIENCE = { start: 30_000, stop: 120_000 };

const isRunning = (path) => store.overview?.projects.find((project) => project.path === path)?.appRunning ?? false;

/**
 * @param {'start' | 'stop'} verb
 * @param {string} path
 */
async function changeProject(verb, path) {
  if (busy.has(path)) return;
  const hadFocus = document.activeElement?.getAttribute('data-run') === path;
  busy.add(path);
  update({});
  const problem = await post(`project/${verb}`, { path }, { patience: PATIENCE[verb] }).then(
    () => null,
    (error) => error,
  );
  busy.delete(path);
  update({});
  stateChanged();
  await refresh().catch(() => {});
  // It has come to what was asked for, if by another request, or by this one's copy.
  const isDone = problem?.status === 409 && isRunning(path) === (verb === 'start');
  if (problem && !isDone) say(problem.message, { isError: true });
  // The project may have moved to another list, with a new button; the keyboard follows it.
  /** @type {HTMLElement} */
  const button = document.querySelector(`[data-run="${CSS.escape(path)}"]`);
  if (hadFocus && document.activeElement === document.body) button?.focus();
}

export const startProject = (path) => changeProject('start', path);
export const stopProject = (path) => changeProject('stop', path);

/** Choices for projects, by path, that the overview does not tell of yet. They are what the page shows. */
export const chosen = new Map();
let saving = Promise.resolve();

/** Saves choices for a project: `command` and `menubar`, null to go back to what was found. The last one made holds. */
export async function saveProject(path, choices, saved) {
  const mine = { ...chosen.get(path), ...choices };
  chosen.set(path, mine);
  update({});
  const turn = saving.then(() => post('project/settings', { path, ...choices }));
  saving = turn.catch(() => {});
  const done = await attempt(() => turn);
  if (done) {
    stateChanged();
    say(saved);
    await refresh().catch(() => {});
  }
  if (chosen.get(path) === mine) {
    chosen.delete(path);
    update({});
  }
  return done;
}

/** Has the user's shell asked anew for the environment of projects. */
export async function refreshEnvironment() {
  const done = await attempt(async () => {
    await post('environment/refresh', {});
    await refresh();
  });
  if (done && !store.overview.environment.problem) say('The environment was read again.');
}

/** Changes which folders are looked through: `addFolder`, `removeFolder`, or `folders`, null for the usual ones. */
export async function changeFolders(change) {
  return attempt(async () => {
    await post('settings', change);
    await refresh();
  });
}

export function addFolder(folder) {
  if (store.overview.folders.some(({ path, exists }) => exists && path === folder)) {
    say('This folder is looked through already.');
    return;
  }
  changeFolders({ addFolder: folder }).then((done) => done && say('Looking through the folder.'));
}

/** Lets the user choose a folder: with the shell's panel, or by typing its path in a plain browser. */
export function askForFolder() {
  if (isNative()) {
    pickFolder('');
    return;
  }
  openModal('Add a folder', (close) =>
    h(
      'form',
      {
        class: 'stack',
        onSubmit(event) {
          event.preventDefault();
          addFolder(/** @type {HTMLFormElement} */ (event.currentTarget).elements['path'].value.trim());
          close();
        },
      },
      h(
        'label',
        { class: 'field' },
        h('span', null, 'Folder that contains your projects'),
        h('input', {
          name: 'path',
          class: 'input mono',
          placeholder: `${store.overview.home}/work`,
          autofocus: true,
          required: true,
          spellcheck: false,
        }),
      ),
      h(
        'div',
        { class: 'actions' },
        h('button', { class: 'button', type: 'button', onClick: close }, 'Cancel'),
        h('button', { class: 'button primary', type: 'submit' }, 'Add folder'),
      ),
    ),
  );
}

window.onFolderPicked = (path, target) => {
  if (target === '' && typeof path === 'string' && store.overview) addFolder(path);
};

window.openUpdate = () => {
  openModal('Updates', (close) =>
    h(
      'div',
      { class: 'stack' },
      h(
        'p',
        null,
        store.about
          ? `This is version ${store.about.version} of the Harbrook dashboard.`
          : 'This is the Harbrook dashboard.',
      ),
      h(
        'p',
        { class: 'soft' },
        'It comes with the application and is updated together with it. It makes no connection beyond this machine, ' +
          'so it does not look for a newer version by itself.',
      ),
      h(
        'div',
        { class: 'actions' },
        h('button', { class: 'button primary', type: 'button', autofocus: true, onClick: close }, 'Done'),
      ),
    ),
  );
};

/** Copies text; the user is told either way. */
export async function copyText(text) {
  try {
    await navigator.clipboard.writeText(text);
    say('Copied.');
  } catch {
    say('The text could not be copied.', { isError: true });
  }
}
