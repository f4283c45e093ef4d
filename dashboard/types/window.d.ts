// What the page and the shell that holds it give each other.
interface Window {
  /** The token, there before the page's first script. */
  __FC_TOKEN?: string;
  webkit?: { messageHandlers?: { fc?: { postMessage(message: ShellMessage): void } } };
  /** Called by the shell after a folder was chosen. */
  onFolderPicked(path: string, target: string): void;
  /** Called by the shell's "Check for Updates…". */
  openUpdate(): void;
}

type ShellMessage =
  | 'drag'
  | 'zoom'
  | 'quit'
  | { k: 'title'; v: string }
  | { k: 'pickFolder'; v: string }
  | { k: 'state' };

// What tests leave in the page.
interface Window {
  __messages?: ShellMessage[];
  __missed?: Set<Element>;
  __run?: unknown;
}
