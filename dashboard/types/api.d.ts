// Everything that crosses the API, said once: for the server, which makes it, the page, which shows it, and the tests.

/** `GET api/state`: the snapshot for the shell. Its shape is the contract's; docs/contract.md. */
export interface State {
  projects: StateProject[];
  stats: Stats;
}

export interface StateProject {
  name: string;
  path: string;
  running: boolean;
  ports: number[];
  hasCommand: boolean;
  appRunning: boolean;
  /** Null where the user has not said. */
  menubar: boolean | null;
}

export interface Stats {
  running: number;
  postgres: number;
  redis: number;
  containers: number;
}

/** `GET api/overview`: everything that the page shows. */
export interface Overview {
  /** Grows with every change. */
  revision: number;
  /** False until every folder has been looked through once. */
  ready: boolean;
  home: string;
  folders: Folder[];
  foldersAreDefault: boolean;
  /** Why the settings cannot be read, in a sentence; nothing can be changed meanwhile. */
  settingsProblem: string | null;
  /** Whose environment projects start in, and why it is not used if so. */
  environment: { shell: string; problem: string | null };
  projects: Project[];
  ports: Port[];
  services: Services;
  stats: Stats;
}

export interface Folder {
  path: string;
  exists: boolean;
  /** True when it holds more folders than are looked through. */
  isCut: boolean;
}

export interface Project {
  name: string;
  path: string;
  kind: string;
  version: string | null;
  /** True when only what still runs there is left of it. */
  isGone: boolean;
  /** The names of the files by which it was found. */
  manifests: string[];
  problem: string | null;
  needsInstall: boolean;
  foundCommand: string | null;
  ownCommand: string | null;
  menubar: boolean | null;
  /** Those that a browser may be answered at. */
  ports: number[];
  running: boolean;
  /** True when the dashboard started what runs. */
  appRunning: boolean;
  run: Run | null;
}

/** The last start of a project; times in milliseconds. */
export interface Run {
  command: string;
  pid: number | null;
  startedAt: number;
  endedAt?: number;
  stopping: boolean;
  /** What a stop is waiting for. */
  waitingFor: string[];
  ended: boolean;
  code: number | null;
  signal: string | null;
  /** What its output says of why it failed. */
  hints: string[];
}

export interface Port {
  port: number;
  addresses: string[];
  user: string | null;
  /** Whether it is the user's own. */
  own: boolean;
  /** Whether a browser may be answered there. */
  isForBrowsers: boolean;
  process: { pid: number; name: string; command: string } | null;
  container: { name: string; image: string } | null;
  /** The path of the project it belongs to. */
  project: string | null;
}

export interface Services {
  ready: boolean;
  postgres: Postgres[];
  redis: Redis[];
  docker: Engine;
}

export interface Postgres {
  port: number;
  socket: string | null;
  tls: boolean;
  version: string | null;
}

export interface Redis {
  port: number;
  product: string;
  version: string | null;
  keys: number | null;
  needsPassword: boolean;
}

/** The container engine. `reason` says why one that is there cannot be reached. */
export interface Engine {
  available: boolean;
  reason?: string | null;
  version?: string | null;
  socket?: string;
  containers: Container[];
}

export interface Container {
  id: string;
  name: string;
  image: string;
  state: string;
  status: string;
  ports: { port: number; inside: number }[];
  composeProject: string | null;
  /** The folder of its compose project, and the path of the project there. */
  folder: string | null;
  project: string | null;
}

/** `GET api/settings`, and what a POST to it answers. */
export interface FolderSettings {
  folders: Folder[];
  foldersAreDefault: boolean;
}

/** `GET api/about`. */
export interface About {
  version: string;
  node: string;
  dataDirectory: string;
  log: string;
  platform: string;
}

/** `GET api/project/runs`: what is kept of a project's last runs, the latest first. One without an end was cut off. */
export interface Runs {
  runs: {
    startedAt: number;
    command: string;
    endedAt?: number;
    code?: number | null;
    signal?: string | null;
    /** Whether the user has stopped it. */
    stopped?: boolean;
    hints?: string[];
  }[];
}

/** What each address answers to a GET. */
export interface Answers {
  state: State;
  overview: Overview;
  settings: FolderSettings;
  about: About;
  'project/runs': Runs;
}

/** What each address takes in a POST. */
export interface Bodies {
  settings: { folders?: string[] | null; addFolder?: string; removeFolder?: string };
  'environment/refresh': Record<string, never>;
  'project/start': { path: string };
  'project/stop': { path: string };
  'project/settings': { path: string; command?: string | null; menubar?: boolean | null };
}
