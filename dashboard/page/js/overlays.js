import { h, render } from 'preact';
import { icon } from './icons.js';

const SHOWN = 5000;

/** Shows a short message at the foot of the page for a while and has it read aloud; errors are read at once. */
export function say(message, { isError = false } = {}) {
  const region = document.getElementById(isError ? 'warned' : 'said');
  const note = document.createElement('div');
  note.className = isError ? 'note note-error' : 'note';
  render([icon(isError ? 'warn' : 'check'), h('span', null, message)], note);
  region.append(note);
  while (region.children.length > 3) region.firstChild.remove();
  setTimeout(() => note.remove(), SHOWN);
}

/**
 * Opens a modal dialog with what `content` makes of the closing function. Everything lives in one element of the class
 * "modal-bg": whoever removes that has closed the dialog.
 */
export function openModal(title, content) {
  const dialog = document.createElement('dialog');
  dialog.className = 'modal modal-bg';
  dialog.setAttribute('aria-label', title);
  const close = () => dialog.close();
  dialog.addEventListener('close', () => dialog.remove());
  // What the dialog holds covers it, so only its backdrop is itself.
  dialog.addEventListener('mousedown', (event) => {
    if (event.target === dialog) close();
  });
  render(
    [
      h(
        'header',
        { class: 'modal-head' },
        h('h2', null, title),
        h(
          'button',
          { class: 'button quiet square', type: 'button', 'aria-label': 'Close', onClick: close },
          icon('close'),
        ),
      ),
      h('div', { class: 'modal-body' }, content(close)),
    ],
    dialog,
  );
  document.body.append(dialog);
  dialog.showModal();
}
