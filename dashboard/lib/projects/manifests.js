// Reads one folder's manifest files into what the dashboard says of a project. Every reader gets the manifest's text
// and the set of names in the folder, and answers with { name, version, command } as far as the manifest tells.

const PACKAGE_SCRIPTS = ['dev', 'start', 'serve', 'develop', 'preview'];

function parseJson(text) {
  try {
    const value = JSON.parse(text);
    return value !== null && typeof value === 'object' && !Array.isArray(value) ? value : {};
  } catch {
    return { malformed: true };
  }
}

const textOrNothing = (value) => (typeof value === 'string' && value.trim() !== '' ? value.trim() : undefined);

/** The value of `key = "…"` in one table of a TOML text; enough for names and versions. */
export function tomlString(text, table, key) {
  let current = '';
  for (const line of text.split(/\r?\n/)) {
    const header = /^\s*\[+\s*([^\]]+?)\s*\]+\s*(#.*)?$/.exec(line);
    if (header) {
      current = header[1];
      continue;
    }
    if (current !== table) continue;
    const entry = /^\s*([\w-]+)\s*=\s*(?:"([^"]*)"|'([^']*)')/.exec(line);
    if (entry && entry[1] === key) return textOrNothing(entry[2] ?? entry[3]);
  }
  return undefined;
}

function packageManager(manifest, names) {
  const declared = /^(npm|pnpm|yarn|bun)@/.exec(manifest.packageManager ?? '');
  if (declared) return declared[1];
  if (names.has('pnpm-lock.yaml')) return 'pnpm';
  if (names.has('yarn.lock')) return 'yarn';
  if (names.has('bun.lockb') || names.has('bun.lock')) return 'bun';
  return 'npm';
}

function nodeKind(manifest) {
  const packages = { ...manifest.dependencies, ...manifest.devDependencies };
  const known = [
    ['next', 'Next.js'],
    ['nuxt', 'Nuxt'],
    ['@sveltejs/kit', 'SvelteKit'],
    ['astro', 'Astro'],
    ['@angular/core', 'Angular'],
    ['@remix-run/react', 'Remix'],
    ['electron', 'Electron'],
    ['vite', 'Vite'],
    ['@nestjs/core', 'NestJS'],
    ['express', 'Express'],
    ['fastify', 'Fastify'],
    ['typescript', 'TypeScript'],
  ];
  return known.find(([name]) => Object.hasOwn(packages, name))?.[1] ?? 'Node.js';
}

function readPackage(text, names) {
  const manifest = parseJson(text);
  const scripts = manifest.scripts !== null && typeof manifest.scripts === 'object' ? manifest.scripts : {};
  const script = PACKAGE_SCRIPTS.find((name) => textOrNothing(scripts[name]));
  return {
    kind: nodeKind(manifest),
    name: textOrNothing(manifest.name),
    version: textOrNothing(manifest.version),
    command: script ? `${packageManager(manifest, names)} run ${script}` : undefined,
    problem: manifest.malformed ? 'package.json is not valid JSON.' : undefined,
    needsInstall: Boolean(script) && Object.keys(manifest.dependencies ?? {}).length > 0 && !names.has('node_modules'),
  };
}

function readComposer(text, names) {
  const manifest = parseJson(text);
  const script = ['dev', 'start', 'serve'].find((name) => manifest.scripts && Object.hasOwn(manifest.scripts, name));
  let command;
  if (names.has('artisan')) command = 'php artisan serve';
  else if (script) command = `composer run ${script}`;
  return {
    kind: names.has('artisan') ? 'Laravel' : 'PHP',
    name: textOrNothing(manifest.name)?.split('/').pop(),
    version: textOrNothing(manifest.version),
    command,
    problem: manifest.malformed ? 'composer.json is not valid JSON.' : undefined,
  };
}

function readDeno(text) {
  // Comments are allowed in deno.jsonc; whole-line ones are what is met in practice.
  const manifest = parseJson(text.replace(/^\s*\/\/.*$/gm, ''));
  const task = ['dev', 'start', 'serve'].find((name) => manifest.tasks && Object.hasOwn(manifest.tasks, name));
  return {
    kind: 'Deno',
    name: textOrNothing(manifest.name)?.split('/').pop(),
    version: textOrNothing(manifest.version),
    command: task ? `deno task ${task}` : undefined,
  };
}

function readPyproject(text, names) {
  return {
    kind: names.has('manage.py') ? 'Django' : 'Python',
    name: tomlString(text, 'project', 'name') ?? tomlString(text, 'tool.poetry', 'name'),
    version: tomlString(text, 'project', 'version') ?? tomlString(text, 'tool.poetry', 'version'),
    command: names.has('manage.py') ? 'python3 manage.py runserver' : undefined,
  };
}

function readGemfile(_text, names) {
  const rails = names.has('bin') && names.has('config.ru') && names.has('app');
  const rack = names.has('config.ru') ? 'bundle exec rackup' : undefined;
  return { kind: rails ? 'Rails' : 'Ruby', command: rails ? 'bin/rails server' : rack };
}

function readCmake(text) {
  const project = /^\s*project\s*\(\s*"?([\w.+-]+)"?([^)]*)\)/im.exec(text);
  return { kind: 'CMake', name: project?.[1], version: /\bVERSION\s+"?([\d.]+)/i.exec(project?.[2] ?? '')?.[1] };
}

function readCompose(text) {
  return { kind: 'Compose', name: /^name:\s*["']?([\w.-]+)/m.exec(text)?.[1], command: 'docker compose up' };
}

/** In the order in which they decide the kind: a web application with a compose file beside it is a web application. */
export const MANIFESTS = [
  ['package.json', readPackage],
  ['deno.json', readDeno],
  ['deno.jsonc', readDeno],
  [
    'Cargo.toml',
    (text, names) => ({
      kind: 'Rust',
      name: tomlString(text, 'package', 'name'),
      version: tomlString(text, 'package', 'version'),
      // A bare library or workspace has nothing to run.
      command: tomlString(text, 'package', 'name') && names.has('src/main.rs') ? 'cargo run' : undefined,
    }),
  ],
  [
    'go.mod',
    (text, names) => ({
      kind: 'Go',
      name: /^module\s+(\S+)/m
        .exec(text)?.[1]
        .replace(/\/v\d+$/, '')
        .split('/')
        .pop(),
      command: names.has('main.go') ? 'go run .' : undefined,
    }),
  ],
  ['pyproject.toml', readPyproject],
  ['manage.py', () => ({ kind: 'Django', command: 'python3 manage.py runserver' })],
  ['requirements.txt', () => ({ kind: 'Python' })],
  ['Gemfile', readGemfile],
  ['composer.json', readComposer],
  [
    'mix.exs',
    (text) => ({
      kind: 'Elixir',
      name: /\bapp:\s*:(\w+)/.exec(text)?.[1],
      version: /\bversion:\s*"([^"]+)"/.exec(text)?.[1],
      command: /:phoenix\b/.test(text) ? 'mix phx.server' : undefined,
    }),
  ],
  [
    'pom.xml',
    (text) => ({
      kind: 'Maven',
      name: /<artifactId>([^<]+)</.exec(text.replace(/<parent>[\s\S]*?<\/parent>/, ''))?.[1],
      version: /<version>([^<$]+)</.exec(
        text.replace(/<parent>[\s\S]*?<\/parent>/, '').split('<dependencies>')[0],
      )?.[1],
    }),
  ],
  ['build.gradle', () => ({ kind: 'Gradle' })],
  ['build.gradle.kts', () => ({ kind: 'Gradle' })],
  ['Package.swift', () => ({ kind: 'Swift' })],
  [
    'pubspec.yaml',
    (text) => ({
      kind: 'Dart',
      name: /^name:\s*(\S+)/m.exec(text)?.[1],
      version: /^version:\s*(\S+)/m.exec(text)?.[1],
    }),
  ],
  ['CMakeLists.txt', readCmake],
  [
    'meson.build',
    (text) => ({
      kind: 'Meson',
      name: /project\s*\(\s*'([^']+)'/.exec(text)?.[1],
      version: /\bversion\s*:\s*'([^']+)'/.exec(text)?.[1],
    }),
  ],
  ['compose.yaml', readCompose],
  ['compose.yml', readCompose],
  ['docker-compose.yaml', readCompose],
  ['docker-compose.yml', readCompose],
];

export const MANIFEST_NAMES = new Set(MANIFESTS.map(([name]) => name));
