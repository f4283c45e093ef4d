// Whose a port or a container is, among the projects.

/** Makes a function from a folder to the path of its project, be it itself or the nearest above; or null. */
export function projectLookup(projects) {
  // A process tells its folder without symbolic links, a compose file's label perhaps with them.
  const byFolder = new Map(
    projects.flatMap(({ path, realPath }) => [
      [path, path],
      [realPath, path],
    ]),
  );
  return (folder) => {
    for (let at = folder; at; at = at.slice(0, at.lastIndexOf('/'))) {
      if (byFolder.has(at)) return byFolder.get(at);
    }
    return null;
  };
}

const isRunning = ({ state }) => state === 'running';

/**
 * Every container with the path of its `project`, in whose folder the compose file is that describes it, or null.
 * `containers` is undefined without an engine.
 */
export function containersWithProjects(containers = [], projectOf) {
  return containers.map((container) => ({ ...container, project: projectOf(container.folder) }));
}

/**
 * Every port with the path of its `project` (that of the run which opened it, or of its process's folder) and the
 * running `container` that publishes it: an engine opens those ports by a process of its own, which tells nothing.
 */
export function portsWithProjects(ports, { projectOf, groups = new Map(), containers = [] }) {
  const publishers = new Map(
    containers.filter(isRunning).flatMap((container) => container.ports.map(({ port }) => [port, container])),
  );
  return ports.map((entry) => {
    const holder = entry.process;
    // The dashboard may live below a project's folder without being that project.
    if (holder?.pid === process.pid) return { ...entry, project: null, container: null };
    const own = holder ? (groups.get(holder.group) ?? projectOf(holder.folder)) : null;
    const container = own ? null : (publishers.get(entry.port) ?? null);
    return { ...entry, project: own ?? container?.project ?? null, container };
  });
}

/** The paths of the projects that consist of containers, as their compose files say, and have some of them running. */
export function composedAndRunning(projects, containers) {
  const up = new Set(containers.filter(isRunning).map(({ project }) => project));
  return new Set(projects.filter(({ kind, path }) => kind === 'Compose' && up.has(path)).map(({ path }) => path));
}

const HELPER_NAMES =
  /^(ngrok|cloudflared|bore|frpc|zrok|tailscaled?|ssh|sshd|autossh|devtunnel|code|code-tunnel|code-server|codium|cursor|windsurf|zed|gopls|rust-analyzer|clangd|pylsp|pyright|ruff|copilot|dlv|lldb-server|gdbserver|.*-language-server|.*-lsp)$/;
const HELPER_COMMANDS =
  /language-?server|tsserver\.js|[/ ](localtunnel|lt|ngrok|untun|pyright)\b|\/\.(vscode|vscode-server|cursor|cursor-server|windsurf|windsurf-server)\/|jetbrains|--stdio\b|\blsp\b/i;

/**
 * Whether a process in a project's folder is a tunnel, a language server or another helper of an editor: it listens, and
 * yet the project does not run by it.
 */
export function isHelper({ name, command }) {
  return HELPER_NAMES.test(name) || HELPER_COMMANDS.test(command.slice(0, 2000));
}
