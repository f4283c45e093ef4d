// Folders as the tools' own documentation and generators make them, with what is to be said of each. `starts` is what
// the command prints when its tool is installed: nothing is listed for a tool that would have to fetch packages first.
const server = (words) =>
  `require('node:http').createServer().listen(0, '127.0.0.1', () => { console.log('${words}'); });\n`;
const npm = { tool: 'npm', says: 'really here' };
const serving = {
  'package.json': { name: 'app', scripts: { dev: 'node serve.js' } },
  'serve.js': server('really here'),
};
/** @returns {Record<string, any>} */
const withPackage = (dependencies, script = /** @type {any} */ ({ dev: 'node serve.js' }), more = {}) => ({
  'package.json': { name: 'app', version: '0.0.0', scripts: script, devDependencies: dependencies, ...more },
  'serve.js': server('really here'),
});
const pyproject = (dependencies, more = '') =>
  `[project]\nname = "site"\nversion = "0.1.0"\ndependencies = [${dependencies.map((name) => `"${name}"`).join(', ')}]\n${more}`;
const django = "#!/usr/bin/env python\nprint('a Django of the test')\n";
const fastapi = 'from fastapi import FastAPI\n\napp = FastAPI()\n';
const flask = 'from flask import Flask\n\napp = Flask(__name__)\n';
const PORT_0 =
  "python3 -c \"import http.server; http.server.HTTPServer(('127.0.0.1', 0), None); print('really here')\"";

/** @type {[string, Record<string, any>, any][]} */
export const LAYOUTS = [
  // Node.js and its kin
  ['npm', serving, { kind: 'Node.js', name: 'app', command: 'npm run dev', starts: npm }],
  [
    'npm start of a bare server',
    { 'package.json': { name: 'bare' }, 'server.js': server('really here') },
    { kind: 'Node.js', name: 'bare', command: 'node server.js', starts: { tool: 'node', says: 'really here' } },
  ],
  [
    'Vite',
    withPackage({ vite: '^7.0.0', typescript: '~5.8.3' }),
    { kind: 'Vite', name: 'app', version: undefined, command: 'npm run dev', starts: npm },
  ],
  [
    'Next.js with pnpm',
    { ...withPackage({ next: '15.0.0' }, { dev: 'next dev' }), 'pnpm-lock.yaml': "lockfileVersion: '9.0'\n" },
    { kind: 'Next.js', command: 'pnpm run dev', needsInstall: true },
  ],
  [
    'Nuxt with yarn',
    { ...withPackage({ nuxt: '^4.0.0' }, { dev: 'nuxt dev' }), 'yarn.lock': '' },
    { kind: 'Nuxt', command: 'yarn run dev' },
  ],
  [
    'SvelteKit with bun',
    { ...withPackage({ '@sveltejs/kit': '^2.0.0', vite: '^7.0.0' }), 'bun.lock': '{}' },
    { kind: 'SvelteKit', command: 'bun run dev' },
  ],
  ['Astro', withPackage({ astro: '^5.0.0' }), { kind: 'Astro', command: 'npm run dev', starts: npm }],
  [
    'Angular',
    {
      ...withPackage({ '@angular/core': '^20.0.0' }, { start: 'node serve.js', build: 'ng build' }),
      'angular.json': {},
    },
    { kind: 'Angular', command: 'npm run start', starts: npm },
  ],
  [
    'Create React App',
    withPackage({ 'react-scripts': '5.0.1' }, { start: 'node serve.js' }),
    { kind: 'React', command: 'npm run start', starts: npm },
  ],
  [
    'Vue CLI',
    withPackage({ '@vue/cli-service': '5' }, { serve: 'node serve.js' }),
    { kind: 'Vue', command: 'npm run serve', starts: npm },
  ],
  [
    'NestJS',
    withPackage({ '@nestjs/core': '^11.0.0' }, { start: 'nest start', 'start:dev': 'node serve.js' }),
    { kind: 'NestJS', command: 'npm run start:dev', starts: npm },
  ],
  [
    'Express by its generator',
    withPackage({ express: '~4.16.1' }, { start: 'node serve.js' }),
    { kind: 'Express', command: 'npm run start', starts: npm },
  ],
  [
    'Gatsby',
    withPackage({ gatsby: '^5.0.0' }, { develop: 'node serve.js' }),
    { kind: 'Gatsby', command: 'npm run develop', starts: npm },
  ],
  [
    'a member of a pnpm workspace',
    {
      'package.json': { name: 'root', private: true },
      'pnpm-workspace.yaml': "packages:\n  - 'apps/*'\n  - '!apps/old'\n",
      'pnpm-lock.yaml': '',
      'node_modules/x/y': '',
      'apps/web/package.json': { name: 'web', scripts: { dev: 'vite' }, dependencies: { vite: '7' } },
    },
    { at: 'apps/web', kind: 'Vite', name: 'web', command: 'pnpm run dev', needsInstall: false },
  ],
  [
    'what a workspace leaves out',
    {
      'package.json': { name: 'root' },
      'pnpm-workspace.yaml': "packages: ['apps/*', '!apps/old']\n",
      'pnpm-lock.yaml': '',
      'apps/old/package.json': { name: 'old', scripts: { dev: 'x' } },
    },
    { at: 'apps/old', name: 'old', command: 'npm run dev' },
  ],
  [
    'a member of a yarn workspace, deep down',
    {
      'package.json': { name: 'root', workspaces: { packages: ['packages/**'] }, packageManager: 'yarn@4.9.1' },
      'packages/a/b/package.json': { name: '@root/b', scripts: { start: 'x' } },
    },
    { at: 'packages/a/b', name: '@root/b', command: 'yarn run start' },
  ],
  [
    'a member of a bun workspace',
    {
      'package.json': { name: 'root', workspaces: ['*'] },
      'bun.lock': '{}',
      'web/package.json': { name: 'web', scripts: { dev: 'x' } },
    },
    { at: 'web', command: 'bun run dev' },
  ],
  [
    'Deno',
    { 'deno.jsonc': '{\n  // what can be done\n  "tasks": { "dev": "deno run --watch main.ts", },\n}' },
    { kind: 'Deno', name: 'thing', command: 'deno task dev' },
  ],
  [
    'Deno without tasks',
    { 'deno.json': '{ "name": "@me/tool", "version": "1.2.0" }', 'main.ts': '' },
    { kind: 'Deno', name: 'tool', version: '1.2.0', command: 'deno run --allow-net main.ts' },
  ],
  // Python
  [
    'Django by its generator',
    { 'manage.py': django, 'mysite/settings.py': '' },
    {
      kind: 'Django',
      name: 'thing',
      command: 'python3 manage.py runserver',
      starts: { tool: 'python3', says: 'a Django of the test' },
    },
  ],
  [
    'Django with uv',
    { 'manage.py': django, 'pyproject.toml': pyproject(['django>=5.2']), 'uv.lock': 'version = 1\n' },
    { kind: 'Django', name: 'site', command: 'uv run python manage.py runserver' },
  ],
  [
    'Django with Poetry',
    {
      'manage.py': django,
      'pyproject.toml':
        '[tool.poetry]\nname = "poems"\nversion = "2.0"\n[tool.poetry.dependencies]\npython = "^3.12"\ndjango = "^5"\n',
    },
    { kind: 'Django', name: 'poems', version: '2.0', command: 'poetry run python manage.py runserver' },
  ],
  [
    'Django with Pipenv',
    { 'manage.py': django, Pipfile: '[packages]\ndjango = "*"\n' },
    { kind: 'Django', command: 'pipenv run python manage.py runserver' },
  ],
  [
    'Django with a virtual environment',
    { 'manage.py': django, 'requirements.txt': 'Django==5.2\n', '.venv/bin/python': '' },
    { kind: 'Django', command: '.venv/bin/python manage.py runserver' },
  ],
  [
    'Flask by requirements.txt',
    { 'requirements.txt': '# web\nFlask==3.1.0\ngunicorn\n', 'app.py': flask },
    { kind: 'Flask', name: 'thing', command: 'python3 -m flask run' },
  ],
  [
    'Flask with a factory',
    {
      'pyproject.toml': pyproject(['flask']),
      'app/__init__.py': 'from flask import Flask\ndef create_app():\n    app = Flask(__name__)\n    return app\n',
    },
    { kind: 'Flask', name: 'site', command: 'python3 -m flask --app app run' },
  ],
  [
    'Flask with uv',
    { 'pyproject.toml': pyproject(['flask>=3'], '[tool.uv]\n'), 'main.py': flask },
    { kind: 'Flask', command: 'uv run python -m flask --app main run' },
  ],
  [
    'FastAPI with its own command',
    { 'pyproject.toml': pyproject(['fastapi[standard]>=0.115']), 'main.py': fastapi, 'uv.lock': '' },
    { kind: 'FastAPI', command: 'uv run python -m fastapi dev main.py' },
  ],
  [
    'FastAPI with uvicorn',
    { 'requirements.txt': 'fastapi\nuvicorn\n', 'app/main.py': fastapi, 'venv/bin/python': '' },
    { kind: 'FastAPI', command: 'venv/bin/python -m uvicorn app.main:app --reload' },
  ],
  [
    'Streamlit',
    { 'requirements.txt': 'streamlit\n', 'streamlit_app.py': '' },
    { kind: 'Streamlit', command: 'python3 -m streamlit run streamlit_app.py' },
  ],
  [
    'a Python library',
    { 'pyproject.toml': pyproject([], '[build-system]\nrequires = ["hatchling"]\n') },
    { kind: 'Python', name: 'site', version: '0.1.0', command: undefined },
  ],
  [
    'MkDocs',
    { 'mkdocs.yml': 'site_name: "The manual"\nmarkdown_extensions:\n  - x: !!python/name:y\n', 'docs/index.md': '' },
    { kind: 'MkDocs', name: 'The manual', command: 'python3 -m mkdocs serve' },
  ],
  // Ruby, PHP, Elixir
  [
    'Rails',
    { Gemfile: 'gem "rails"\n', 'config.ru': '', 'config/application.rb': '', 'bin/rails': '' },
    { kind: 'Rails', command: 'bin/rails server' },
  ],
  [
    'Rails with bin/dev',
    {
      Gemfile: 'gem "rails"\n',
      'config/application.rb': '',
      'bin/rails': '',
      'bin/dev': '',
      'Procfile.dev': 'web: bin/rails server\n',
    },
    { kind: 'Rails', command: 'bin/dev' },
  ],
  [
    'Rails without binstubs',
    { Gemfile: 'gem "rails"\n', 'config/application.rb': '' },
    { kind: 'Rails', command: 'bundle exec rails server' },
  ],
  ['Sinatra', { Gemfile: "gem 'sinatra'\n", 'app.rb': '' }, { kind: 'Sinatra', command: 'bundle exec ruby app.rb' }],
  ['Rack', { Gemfile: 'gem "rack"\n', 'config.ru': '' }, { kind: 'Ruby', command: 'bundle exec rackup' }],
  [
    'Jekyll',
    { Gemfile: 'gem "jekyll"\n', '_config.yml': 'title: Notes\n' },
    { kind: 'Jekyll', name: 'Notes', command: 'bundle exec jekyll serve' },
  ],
  [
    'Laravel',
    { 'composer.json': { name: 'team/club' }, artisan: '' },
    { kind: 'Laravel', name: 'club', command: 'php artisan serve' },
  ],
  [
    'Laravel of today',
    {
      'composer.json': { name: 'laravel/laravel', scripts: { dev: ['npx concurrently x'] } },
      artisan: '',
      'package.json': { scripts: { dev: 'vite' }, devDependencies: { vite: '7' } },
    },
    { name: 'laravel', command: 'npm run dev' },
  ],
  [
    'Symfony',
    { 'composer.json': { name: 'me/shop' }, 'symfony.lock': '{}', 'public/index.php': '' },
    { kind: 'Symfony', command: 'php -S 127.0.0.1:8000 -t public' },
  ],
  ['plain PHP', { 'index.php': '<?php echo 1;' }, { kind: 'PHP', name: 'thing', command: 'php -S 127.0.0.1:8000' }],
  ['WordPress', { 'index.php': '', 'wp-settings.php': '' }, { kind: 'WordPress', command: 'php -S 127.0.0.1:8000' }],
  [
    'Phoenix',
    { 'mix.exs': 'def project do\n [app: :chat, version: "0.1.0"]\nend\ndefp deps do\n [{:phoenix, "~> 1.8"}]\nend\n' },
    { kind: 'Phoenix', name: 'chat', version: '0.1.0', command: 'mix phx.server' },
  ],
  // Compiled languages
  [
    'Rust',
    {
      'Cargo.toml': '[package]\nname = "ledger" # its name\nversion = \'0.9.0\'\nedition = "2021"\n',
      'src/main.rs': 'fn main() { println!("really here"); }\n',
    },
    {
      kind: 'Rust',
      name: 'ledger',
      version: '0.9.0',
      command: 'cargo run',
      starts: { tool: 'cargo', says: 'really here' },
    },
  ],
  [
    'Rust with one program of a library',
    {
      'Cargo.toml': '[package]\nname = "lib"\nversion = "0.1.0"\nedition = "2021"\n',
      'src/lib.rs': '',
      'src/bin/tool.rs': 'fn main() { println!("really here"); }\n',
    },
    { command: 'cargo run --bin tool', starts: { tool: 'cargo', says: 'really here' } },
  ],
  [
    'a Rust workspace',
    { 'Cargo.toml': '[workspace]\nmembers = ["a"]\n' },
    { kind: 'Rust', name: 'thing', command: undefined },
  ],
  [
    'Go',
    {
      'go.mod': 'module example.org/team/mailer/v2\n\ngo 1.24\n',
      'main.go': 'package main\nfunc main() { println("really here") }\n',
    },
    { kind: 'Go', name: 'mailer', command: 'go run .', starts: { tool: 'go', says: 'really here' } },
  ],
  [
    'Go with cmd',
    { 'go.mod': 'module example.org/api\n', 'cmd/api/main.go': '', 'cmd/migrate/main.go': '' },
    { name: 'api', command: 'go run ./cmd/api' },
  ],
  [
    'ASP.NET',
    {
      'Shop.csproj':
        '<Project Sdk="Microsoft.NET.Sdk.Web"><PropertyGroup><TargetFramework>net9.0</TargetFramework></PropertyGroup></Project>',
    },
    { kind: 'ASP.NET', name: 'Shop', command: 'dotnet run' },
  ],
  [
    'a .NET program',
    {
      'Tool.fsproj':
        '<Project Sdk="Microsoft.NET.Sdk"><PropertyGroup><OutputType>Exe</OutputType><Version>2.1</Version></PropertyGroup></Project>',
    },
    { kind: '.NET', name: 'Tool', version: '2.1', command: 'dotnet run' },
  ],
  [
    'a .NET solution',
    { 'Shop.sln': '', 'Shop.Web/Shop.Web.csproj': '<Project Sdk="Microsoft.NET.Sdk.Web"/>' },
    { kind: '.NET', name: 'Shop', command: undefined },
  ],
  [
    'Spring by Maven',
    {
      mvnw: '',
      'pom.xml':
        '<?xml version="1.0"?><project xmlns="http://maven.apache.org/POM/4.0.0"><parent><artifactId>spring-boot-starter-parent</artifactId><version>3.5.0</version></parent>' +
        '<artifactId>demo</artifactId><version>0.0.1-SNAPSHOT</version><build><plugins><plugin><artifactId>spring-boot-maven-plugin</artifactId></plugin></plugins></build></project>',
    },
    { kind: 'Spring', name: 'demo', version: '0.0.1-SNAPSHOT', command: './mvnw spring-boot:run' },
  ],
  [
    'Spring by Gradle',
    {
      gradlew: '',
      'build.gradle': "plugins {\n  id 'java'\n  id 'org.springframework.boot' version '3.5.0'\n}\n",
      'settings.gradle': "rootProject.name = 'demo'\n",
    },
    { kind: 'Spring', name: 'demo', command: './gradlew bootRun' },
  ],
  [
    'a Gradle application',
    { 'build.gradle.kts': 'plugins {\n    application\n}\n', 'settings.gradle.kts': 'rootProject.name = "tool"\n' },
    { kind: 'Gradle', name: 'tool', command: 'gradle run' },
  ],
  [
    'Ktor',
    { gradlew: '', 'build.gradle.kts': 'plugins {\n  id("io.ktor.plugin") version "3.1.0"\n}\n' },
    { kind: 'Ktor', command: './gradlew run' },
  ],
  [
    'Swift',
    {
      'Package.swift':
        '// swift-tools-version: 6.0\nlet package = Package(name: "tool", targets: [.executableTarget(name: "tool")])\n',
    },
    { kind: 'Swift', name: 'tool', command: 'swift run' },
  ],
  [
    'Flutter',
    { 'pubspec.yaml': 'name: app\nversion: 1.0.0+1\ndependencies:\n  flutter:\n    sdk: flutter\n' },
    { kind: 'Flutter', name: 'app', version: '1.0.0+1', command: 'flutter run' },
  ],
  [
    'CMake',
    { 'CMakeLists.txt': 'cmake_minimum_required(VERSION 3.20)\nproject(tracer\n  VERSION 1.2.3\n  LANGUAGES CXX)\n' },
    { kind: 'CMake', name: 'tracer', version: '1.2.3', command: undefined },
  ],
  [
    'Meson',
    { 'meson.build': "project('tracer', 'c',\n  version : '0.4')\n" },
    { kind: 'Meson', name: 'tracer', version: '0.4' },
  ],
  // Tasks and pages
  [
    'a Procfile',
    { Procfile: `web: ${PORT_0}\nworker: sleep 5\n` },
    { kind: 'Procfile', command: PORT_0, starts: { tool: 'python3', says: 'really here' } },
  ],
  [
    'a Procfile with a port',
    { Procfile: 'web: echo "really here on $PORT"\n' },
    {
      command: 'export PORT=${PORT:-5000}; echo "really here on $PORT"',
      starts: { tool: 'sh', says: 'really here on 5000' },
    },
  ],
  [
    'a Makefile',
    { Makefile: '.PHONY: run\nNAME := x\nrun: build\n\t@echo really here\nbuild:\n' },
    { kind: 'Make', command: 'make run', starts: { tool: 'make', says: 'really here' } },
  ],
  [
    'just',
    { justfile: 'port := "8080"\n\n# serve it\nserve PORT=port: build\n  echo really here\nbuild:\n' },
    { kind: 'just', command: 'just serve', starts: { tool: 'just', says: 'really here' } },
  ],
  [
    'Task',
    { 'Taskfile.yml': "version: '3'\ntasks:\n  dev:\n    cmds: [echo]\n" },
    { kind: 'Task', command: 'task dev' },
  ],
  [
    'Compose',
    { 'compose.yaml': 'name: stack\nservices: {}\n' },
    { kind: 'Compose', name: 'stack', command: 'docker compose up' },
  ],
  [
    'a program with its compose file',
    { ...serving, 'docker-compose.yml': 'services: {}\n' },
    { kind: 'Node.js', name: 'app', command: 'npm run dev', starts: npm },
  ],
  [
    'Hugo',
    { 'hugo.toml': "baseURL = 'https://example.org/'\ntitle = 'Notes'\n" },
    { kind: 'Hugo', name: 'Notes', command: 'hugo server' },
  ],
  [
    'mdBook',
    { 'book.toml': '[book]\ntitle = "The book"\n' },
    { kind: 'mdBook', name: 'The book', command: 'mdbook serve' },
  ],
  [
    'a static site',
    { 'index.html': '<!doctype html>' },
    { kind: 'Static site', command: 'python3 -m http.server --bind 127.0.0.1 8000' },
  ],
];
