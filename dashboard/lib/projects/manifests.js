// The files by which a project is known, in the order in which they decide its kind: a web application with a compose
// file beside it is a web application. `reader` names the function of kinds/ that reads it. A weak one makes a project
// only where there is none around it: most projects have such files somewhere inside.
export const MANIFESTS = [
  { name: 'package.json', kind: 'Node.js', reader: 'packageJson' },
  { name: 'deno.json', kind: 'Deno', reader: 'deno' },
  { name: 'deno.jsonc', kind: 'Deno', reader: 'deno' },
  { name: 'Cargo.toml', kind: 'Rust', reader: 'cargo' },
  { name: 'go.mod', kind: 'Go', reader: 'goModule' },
  { name: 'pyproject.toml', kind: 'Python', reader: 'python' },
  { name: 'manage.py', kind: 'Django', reader: 'python' },
  { name: 'Pipfile', kind: 'Python', reader: 'python' },
  { name: 'requirements.txt', kind: 'Python', reader: 'python' },
  { name: 'Gemfile', kind: 'Ruby', reader: 'gemfile' },
  { name: 'composer.json', kind: 'PHP', reader: 'composer' },
  { name: 'mix.exs', kind: 'Elixir', reader: 'mix' },
  { name: 'pom.xml', kind: 'Maven', reader: 'maven' },
  { name: 'build.gradle', kind: 'Gradle', reader: 'gradle' },
  { name: 'build.gradle.kts', kind: 'Gradle', reader: 'gradle' },
  { suffix: '.csproj', kind: '.NET', reader: 'dotnet' },
  { suffix: '.fsproj', kind: '.NET', reader: 'dotnet' },
  { suffix: '.sln', kind: '.NET', reader: 'solution' },
  { suffix: '.slnx', kind: '.NET', reader: 'solution' },
  { name: 'Package.swift', kind: 'Swift', reader: 'swift' },
  { name: 'pubspec.yaml', kind: 'Dart', reader: 'pubspec' },
  { name: 'CMakeLists.txt', kind: 'CMake', reader: 'cmake' },
  { name: 'meson.build', kind: 'Meson', reader: 'meson' },
  { name: 'hugo.toml', kind: 'Hugo', reader: 'hugo' },
  { name: 'hugo.yaml', kind: 'Hugo', reader: 'hugo' },
  { name: 'mkdocs.yml', kind: 'MkDocs', reader: 'mkdocs' },
  { name: 'book.toml', kind: 'mdBook', reader: 'mdbook' },
  { name: '_config.yml', kind: 'Jekyll', reader: 'jekyll' },
  { name: 'Procfile.dev', kind: 'Procfile', reader: 'procfile', isWeak: true },
  { name: 'Procfile', kind: 'Procfile', reader: 'procfile', isWeak: true },
  { name: 'justfile', kind: 'just', reader: 'justfile', isWeak: true },
  { name: 'Justfile', kind: 'just', reader: 'justfile', isWeak: true },
  { name: 'Taskfile.yml', kind: 'Task', reader: 'taskfile', isWeak: true },
  { name: 'Taskfile.yaml', kind: 'Task', reader: 'taskfile', isWeak: true },
  { name: 'Makefile', kind: 'Make', reader: 'makefile', isWeak: true },
  { name: 'GNUmakefile', kind: 'Make', reader: 'makefile', isWeak: true },
  { name: 'compose.yaml', kind: 'Compose', reader: 'compose' },
  { name: 'compose.yml', kind: 'Compose', reader: 'compose' },
  { name: 'docker-compose.yaml', kind: 'Compose', reader: 'compose' },
  { name: 'docker-compose.yml', kind: 'Compose', reader: 'compose' },
  { name: 'index.php', kind: 'PHP', reader: 'phpPage', isWeak: true },
  { name: 'index.html', kind: 'Static site', reader: 'staticSite', isWeak: true },
];

/** Files beside a manifest that change what is said of the project. */
const COMPANIONS = ['package-lock.json', 'pnpm-lock.yaml', 'pnpm-workspace.yaml', 'yarn.lock', 'bun.lock', 'bun.lockb'];

const byName = new Map(MANIFESTS.filter(({ name }) => name).map((manifest, order) => [manifest.name, order]));
const order = new Map(MANIFESTS.map((manifest, index) => [manifest, index]));
const bySuffix = MANIFESTS.filter(({ suffix }) => suffix);

/** The manifest of this file name, or undefined. */
export function manifestOf(fileName) {
  if (byName.has(fileName)) return MANIFESTS.find(({ name }) => name === fileName);
  return bySuffix.find(({ suffix }) => fileName.endsWith(suffix) && fileName.length > suffix.length);
}

/** The manifests among file names, each { file, manifest }, the one that decides first. */
export function manifestsAmong(fileNames) {
  return fileNames
    .map((file) => ({ file, manifest: manifestOf(file) }))
    .filter(({ manifest }) => manifest)
    .sort((one, other) => order.get(one.manifest) - order.get(other.manifest) || (one.file < other.file ? -1 : 1));
}

/** Whether a change of this file may change what is known of the project. */
export const mattersToProject = (fileName) => manifestOf(fileName) !== undefined || COMPANIONS.includes(fileName);
