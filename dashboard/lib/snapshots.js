/** @import { Overview, Port, Run, State, Stats } from '../types/api.js' */
import { readFileSync } from 'node:fs';
import { composedAndRunning, containersWithProjects, isHelper, portsWithProjects, projectLookup } from './owners.js';
import { isForBrowsers } from './ports/protocols.js';
import { shownText } from './text.js';

const collator = new Intl.Collator(undefined, { numeric: true, sensitivity: 'base' });

/** @returns {Run} */
function describeRun(run) {
  if (!run) return null;
  const { startedAt, endedAt, stopping, waitingFor, ended, code, signal, hints, command, pid } = run;
  return { startedAt, endedAt, stopping, waitingFor, ended, code, signal, hints, command, pid };
}

function join(dashboard) {
  const projects = dashboard.projects();
  const projectOf = projectLookup(projects);
  const containers = containersWithProjects(dashboard.services.value.docker.containers, projectOf);
  const groups = dashboard.runner.groups();
  const ports = portsWithProjects(dashboard.ports.ports, { projectOf, groups, containers });
  const composed = composedAndRunning(projects, containers);
  const portsOf = new Map();
  for (const { project, container, ...entry } of ports) {
    // A database in a container belongs to a web application, and yet does not make it run.
    if (!project || (container && !composed.has(project))) continue;
    const holder = entry.process;
    if (holder && !groups.has(holder.group) && isHelper(holder)) continue;
    portsOf.set(project, [...(portsOf.get(project) ?? []), { ...entry, container }]);
  }
  const joined = projects.map((project) => {
    const own = portsOf.get(project.path) ?? [];
    const links = [...new Set(own.filter(isForBrowsers).map(({ port }) => port))].sort((one, other) => one - other);
    const appRunning = dashboard.runner.isRunning(project.path);
    const running = appRunning || own.length > 0 || composed.has(project.path);
    return { project, ports: links, appRunning, running };
  });
  joined.sort(
    (one, other) =>
      collator.compare(one.project.name, other.project.name) || collator.compare(one.project.path, other.project.path),
  );
  return { joined, ports, containers };
}

/** @returns {Stats} */
function statsOf(dashboard, joined) {
  const { postgres, redis, docker } = dashboard.services.value;
  return {
    running: joined.filter(({ running }) => running).length,
    postgres: postgres.length,
    redis: redis.length,
    containers: (docker.containers ?? []).filter(({ state }) => state === 'running').length,
  };
}

/**
 * The snapshot for the shell: which projects there are, which run and where, and the services' counts.
 * @returns {State}
 */
export function stateOf(dashboard) {
  const { joined } = join(dashboard);
  return {
    projects: joined.map(({ project, ports, appRunning, running }) => ({
      name: project.name,
      path: project.path,
      running,
      ports,
      hasCommand: Boolean(dashboard.commandOf(project)),
      appRunning,
      menubar: dashboard.settings.project(project.path).menubar ?? null,
    })),
    stats: statsOf(dashboard, joined),
  };
}

let userNames = null;

function userName(uid) {
  if (uid === undefined) return null;
  if (!userNames) {
    userNames = new Map();
    try {
      for (const line of readFileSync('/etc/passwd', 'utf8').split('\n')) {
        const [name, , id] = line.split(':');
        if (id) userNames.set(Number(id), name);
      }
    } catch {
      // Then the number has to do.
    }
  }
  return userNames.get(uid) ?? `user ${uid}`;
}

/** @returns {Port} */
function describePort(entry) {
  const { port, addresses, uid, process: holder, project, container } = entry;
  return {
    port,
    addresses,
    user: userName(uid),
    own: uid === undefined ? Boolean(holder) : uid === process.getuid(),
    isForBrowsers: isForBrowsers(entry),
    process: holder ? { pid: holder.pid, name: shownText(holder.name), command: shownText(holder.command, 300) } : null,
    container: container ? { name: shownText(container.name), image: shownText(container.image) } : null,
    project,
  };
}

/** The folders to look in, whether each is there, and whether it holds more than is looked through. */
export function foldersOf({ settings, finder }) {
  return settings.folders.map((path) => ({
    path,
    exists: finder.folderExists(path),
    isCut: finder.folderIsCut(path),
  }));
}

/**
 * Everything that the page shows.
 * @returns {Overview}
 */
export function overviewOf(dashboard) {
  const { joined, ports, containers } = join(dashboard);
  const { settings, finder, runner } = dashboard;
  const services = dashboard.services.value;
  return {
    revision: dashboard.revision,
    ready: finder.ready,
    foldersAreDefault: settings.foldersAreDefault,
    home: dashboard.home,
    settingsProblem: settings.problem,
    environment: { shell: dashboard.environment.shell, problem: dashboard.environment.problem },
    folders: foldersOf(dashboard),
    projects: joined.map(({ project, ports: own, appRunning, running }) => {
      const choices = settings.project(project.path);
      return {
        name: project.name,
        path: project.path,
        kind: project.kind,
        version: project.version ?? null,
        isGone: project.isGone ?? false,
        manifests: project.manifests,
        problem: project.problem ?? null,
        needsInstall: project.needsInstall ?? false,
        foundCommand: project.command ?? null,
        ownCommand: choices.command ?? null,
        menubar: choices.menubar ?? null,
        ports: own,
        running,
        appRunning,
        run: describeRun(runner.run(project.path)),
      };
    }),
    ports: ports.map(describePort),
    services: { ...services, docker: { ...services.docker, containers } },
    stats: statsOf(dashboard, joined),
  };
}
