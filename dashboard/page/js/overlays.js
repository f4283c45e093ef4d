import { h, render } from './dom.js';
import { icon } from './icons.js';

const SHOWN = 5000;

/** Shows a short message at the foot of the page for a while and has it read aloud; errors are read at once. */
export function say(message, { isError = false } = {}) {
  const region = document.getElementById(isError ? 'warned' : 'said');
  const note = document.createElement('div');
  note.className = isError ? 'note note-error' : 'note';
  render(note, icon(isError ? 'warn' : 'check'), h('span', null, message));
  region.append(note);
  while (region.children.length > 3) region.firstChild.remove();
  setTimeout(() => note.remove(), SHOWN);
}

/**
 * Opens a modal dialog with `content` (nodes, or a function of the closing function). Everything lives in the backdrop
 * element: whoever removes that has closed the dialog.
 */
export function openModal(title, content) {
  const before = document.activeElement;
  const backdrop = document.createElement('div');
  backdrop.className = 'modal-bg';
  const close = () => {
    backdrop.remove();
    before?.focus?.();
  };
  render(backdrop, h('div', { class: 'modal', role: 'dialog', 'aria-modal': 'true', 'aria-labelledby': 'modal-title' },
    h('header', { class: 'modal-head' },
      h('h2', { id: 'modal-title' }, title),
      h('button', { class: 'button quiet square', type: 'button', 'aria-label': 'Close', onClick: close }, icon('close'))),
    h('div', { class: 'modal-body' }, typeof content === 'function' ? content(close) : content)));

  backdrop.addEventListener('mousedown', (event) => {
    if (event.target === backdrop) close();
  });
  backdrop.addEventListener('keydown', (event) => {
    if (event.key === 'Escape') close();
    if (event.key !== 'Tab') return;
    const stops = [...backdrop.querySelectorAll('a[href], button, input, select, textarea')].filter((stop) => !stop.disabled);
    const edge = event.shiftKey ? stops[0] : stops.at(-1);
    if (document.activeElement !== edge) return;
    event.preventDefault();
    (event.shiftKey ? stops.at(-1) : stops[0]).focus();
  });
  document.body.append(backdrop);
  (backdrop.querySelector('[autofocus]') ?? backdrop.querySelector('.modal-body button') ?? backdrop.querySelector('button')).focus();
  return close;
}
