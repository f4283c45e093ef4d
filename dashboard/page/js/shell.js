// The messages to the native shell; without one they go nowhere.

function post(message) {
  window.webkit?.messageHandlers?.fc?.postMessage(message);
}

export const isNative = () => document.documentElement.classList.contains('native');

export const setWindowTitle = (title) => post({ k: 'title', v: title });

/** Tells the shell that something it shows has been changed here. */
export const stateChanged = () => post({ k: 'state' });

/** Asks for a folder; the answer arrives at `window.onFolderPicked` with the same target, or never. */
export const pickFolder = (target) => post({ k: 'pickFolder', v: target });

const CONTROLS = 'a, button, input, select, textarea, label, [role="button"], [tabindex]';

/** Makes `element` move the window when it is dragged and zoom it on a double click, but not its controls. */
export function actAsTitleBar(element) {
  if (!element) return;
  const isControl = (event) => event.target instanceof Element && event.target.closest(CONTROLS) !== null;
  element.addEventListener('mousedown', (event) => {
    if (event.button === 0 && event.detail < 2 && !isControl(event)) post('drag');
  });
  element.addEventListener('dblclick', (event) => {
    if (event.button === 0 && !isControl(event)) post('zoom');
  });
}
