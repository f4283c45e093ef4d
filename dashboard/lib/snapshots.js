/** @import { Overview, Port, Run, State, Stats } from '../types/api.js' */
import { readFileSync } from 'node:fs';
import { composedAndRunning, containersWithProjects, portsWithProjects, projectLookup } from './owners.js';

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
  const ports = portsWithProjects(dashboard.ports.ports, { projectOf, groups: dashboard.runner.groups(), containers });
  const composed = composedAndRunning(projects, containers);
  const portsOf = new Map();
  for (const { port, project, container } of ports) {
    // A database in a container belongs to a web application, and yet does not make it run.
    if (!project || (container && !composed.has(project))) continue;
    portsOf.set(project, (portsOf.get(project) ?? new Set()).add(port));
  }
  const joined = projects.map((project) => {
    const own = [...(portsOf.get(project.path) ?? [])].sort((one, other) => one - other);
    const appRunning = dashboard.runner.isRunning(project.path);
    return { project, ports: own, appRunning, running: appRunning || own.length > 0 || composed.has(project.path) };
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
function describePort({ port, addresses, uid, process: holder, project, container }) {
  return {
    port,
    addresses,
    user: userName(uid),
    own: uid === undefined ? Boolean(holder) : uid === process.getuid(),
    process: holder ? { pid: holder.pid, name: holder.name, command: holder.command.slice(0, 300) } : null,
    container: container ? { name: container.name, image: container.image } : null,
    project,
  };
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
    folders: settings.folders.map((path) => ({ path, exists: finder.folderExists(path) })),
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
