// Files that name tasks rather than describe a project.
import { firstOf, textOr } from '../folder.js';

const TASKS = ['dev', 'serve', 'start', 'run'];
const LONGEST_LINE = 1000;

const linesOf = (text) => text.split(/\r?\n/).filter((line) => line.length <= LONGEST_LINE);

export function procfile(folder, file) {
  const processes = new Map();
  for (const line of linesOf(folder.text(file))) {
    const at = line.indexOf(':');
    const name = line.slice(0, Math.max(at, 0));
    if (/^[\w-]+$/.test(name)) processes.set(name, line.slice(at + 1).trim());
  }
  const command = textOr(processes.get('web') ?? [...processes.values()][0]);
  // Whoever runs a Procfile gives its processes a port.
  return { command: command?.includes('$PORT') ? `export PORT=\${PORT:-5000}; ${command}` : command };
}

/** The names before a colon at the start of a line. Assignments have an equals sign before it or right after it. */
function targets(text) {
  const names = new Set();
  for (const line of linesOf(text)) {
    const at = line.indexOf(':');
    if (at <= 0 || line[at + 1] === '=' || /^[\s#@]/.test(line)) continue;
    const [name, next = ''] = line.slice(0, at).split(' ');
    // A recipe's parameters may have values of their own.
    if (!name.includes('=') && !/^[+?!]?=/.test(next)) names.add(name);
  }
  return names;
}

const startTarget = (text) => {
  const known = targets(text);
  return TASKS.find((name) => known.has(name));
};

export function makefile(folder, file) {
  const target = startTarget(folder.text(file));
  return { command: target && `make ${target}` };
}

export function justfile(folder, file) {
  const recipe = startTarget(folder.text(file));
  return { command: recipe && `just ${recipe}` };
}

export function taskfile(folder, file) {
  const task = firstOf(TASKS, folder.table(file, 'YAML').tasks);
  return { command: task && `task ${task}` };
}

export function compose(folder, file) {
  return { name: textOr(folder.table(file, 'YAML').name), command: 'docker compose up' };
}
