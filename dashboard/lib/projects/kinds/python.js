import { listOr, tableOr, textOr } from '../folder.js';

const ENTRIES = [
  'main.py',
  'app.py',
  'wsgi.py',
  'server.py',
  'api.py',
  'app/main.py',
  'app/__init__.py',
  'src/main.py',
  'src/app.py',
];

/** The packages that a list of requirements names, in small letters, with their extras: "fastapi[standard]". */
const requirementNames = (lines) =>
  lines.map((line) => /^\s*([\w.-]+(?:\[[\w,.-]*\])?)/.exec(line)?.[1]?.toLowerCase()).filter(Boolean);

function pyprojectOf(folder) {
  return folder.has('pyproject.toml') ? folder.table('pyproject.toml', 'TOML') : {};
}

function packagesOf(folder, pyproject) {
  const project = tableOr(pyproject.project);
  const poetry = tableOr(tableOr(pyproject.tool).poetry);
  const pipfile = folder.has('Pipfile') ? folder.table('Pipfile', 'TOML') : {};
  const lists = [listOr(project.dependencies), ...Object.values(tableOr(pyproject['dependency-groups'])).map(listOr)];
  return new Set([
    ...requirementNames(lists.flat().filter((entry) => typeof entry === 'string')),
    ...requirementNames(folder.text('requirements.txt').split('\n')),
    ...Object.keys(tableOr(poetry.dependencies)).map((name) => name.toLowerCase()),
    ...Object.keys(tableOr(pipfile.packages)).map((name) => name.toLowerCase()),
  ]);
}

/** What starts Python with the project's own packages. */
function interpreter(folder, pyproject) {
  const tools = tableOr(pyproject.tool);
  if (folder.has('uv.lock') || Object.hasOwn(tools, 'uv')) return 'uv run python';
  if (folder.has('poetry.lock') || Object.hasOwn(tools, 'poetry')) return 'poetry run python';
  if (folder.has('pdm.lock') || Object.hasOwn(tools, 'pdm')) return 'pdm run python';
  if (folder.has('Pipfile')) return 'pipenv run python';
  return ['.venv', 'venv', 'env'].map((name) => `${name}/bin/python`).find((path) => folder.has(path)) ?? 'python3';
}

/** The module and the variable with an application that `made` ("Flask(") makes, as "main:app"; or null. */
function applicationIn(folder, made) {
  const entries = [
    ...ENTRIES,
    `${folder.name.replaceAll('-', '_')}/main.py`,
    `src/${folder.name.replaceAll('-', '_')}/main.py`,
  ];
  for (const entry of entries) {
    for (const line of folder.text(entry).split('\n')) {
      if (line.length > 300 || !line.includes(made)) continue;
      const name = /^(\w{1,60})\s?(?::[^=]*)?=\s?\w/.exec(line)?.[1];
      const module = entry.replace(/(\/__init__)?\.py$/, '').replaceAll('/', '.');
      if (name) return { entry, module, name };
      // A factory is known by its module alone.
      if (made === 'Flask(') return { entry, module, name: null };
    }
  }
  return null;
}

const FRAMEWORKS = {
  FastAPI(folder, run, packages) {
    const found = applicationIn(folder, 'FastAPI(');
    if (!found) return undefined;
    if (packages.has('fastapi[standard]')) return `${run} -m fastapi dev ${found.entry}`;
    return `${run} -m uvicorn ${found.module}:${found.name} --reload`;
  },
  Flask(folder, run) {
    const found = applicationIn(folder, 'Flask(');
    const isUsual = !found || ((found.entry === 'app.py' || found.entry === 'wsgi.py') && found.name !== null);
    return `${run} -m flask ${isUsual ? '' : `--app ${found.module} `}run`;
  },
  Streamlit(folder, run) {
    const entry = ['streamlit_app.py', 'app.py', 'main.py'].find((name) => folder.has(name));
    return entry && `${run} -m streamlit run ${entry}`;
  },
};

function frameworkOf(packages) {
  const bare = new Set([...packages].map((name) => name.split('[')[0]));
  return Object.keys(FRAMEWORKS).find((name) => bare.has(name.toLowerCase()));
}

/** pyproject.toml, Pipfile, requirements.txt and manage.py all speak of the same project: each is read with the rest. */
export function python(folder) {
  const pyproject = pyprojectOf(folder);
  const project = tableOr(pyproject.project);
  const poetry = tableOr(tableOr(pyproject.tool).poetry);
  const command = interpreter(folder, pyproject);
  const described = {
    name: textOr(project.name) ?? textOr(poetry.name),
    version: textOr(project.version) ?? textOr(poetry.version),
  };
  if (folder.has('manage.py')) return { ...described, kind: 'Django', command: `${command} manage.py runserver` };
  const packages = packagesOf(folder, pyproject);
  const framework = frameworkOf(packages);
  if (!framework) return { ...described, kind: 'Python' };
  return { ...described, kind: framework, command: FRAMEWORKS[framework](folder, command, packages) };
}

export function mkdocs(folder, file) {
  // Its own tags ("!!python/name") are no plain YAML, so only the line with the name is read.
  const line = folder
    .text(file)
    .split('\n')
    .find((text) => text.startsWith('site_name:'));
  const name = line
    ?.slice('site_name:'.length)
    .trim()
    .replace(/^(["'])(.*)\1$/, '$2');
  return { name: textOr(name), command: `${interpreter(folder, pyprojectOf(folder))} -m mkdocs serve` };
}
