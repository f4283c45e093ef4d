// node tools/bundle.js TARGET [ESBUILD]
// Makes of the sources what is installed: server.js, and page/index.html with its style and its script in it, each with
// its source map beside it, and the licences of the packages that went in. Packages are taken from node_modules, and
// where there is none (at a build of the application) from the copies in vendor/. ESBUILD names the program.
import { spawnSync } from 'node:child_process';
import { copyFileSync, existsSync, mkdirSync, readFileSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { basename, delimiter, dirname, join, resolve } from 'node:path';
import { argv, env, exit } from 'node:process';
import { fileURLToPath } from 'node:url';

export const dashboard = dirname(dirname(fileURLToPath(import.meta.url)));
export const SIDES = { server: join(dashboard, 'vendor'), page: join(dashboard, 'page/vendor') };

const ownEsbuild = join(dashboard, 'node_modules/.bin/esbuild');
const COMMON = ['--bundle', '--sourcemap', '--legal-comments=none', '--log-level=warning', '--charset=utf8'];
// Names stay, so that a stack in the log can be read.
const SERVER = [
  '--platform=node',
  '--format=esm',
  '--target=node18',
  '--minify-whitespace',
  '--minify-syntax',
  // Packages that are not ES modules ask for the interpreter's own in the older way.
  "--banner:js=import { createRequire } from 'node:module'; const require = createRequire(import.meta.url);",
];
const PAGE = ['--platform=browser', '--format=iife', '--target=safari16,chrome110', '--minify'];

/** The server and its workers. A worker lies beside whoever starts it, here as in the bundle, so names are unique. */
function serverEntries() {
  const files = readdirSync(join(dashboard, 'lib'), { recursive: true }).map((name) => join('lib', name));
  return ['server.js', ...files.filter((name) => name.endsWith('-worker.js'))];
}

function run(esbuild = ownEsbuild, parameters, packages) {
  const nodePath = [packages, env.NODE_PATH].filter(Boolean).join(delimiter);
  const { status, error } = spawnSync(esbuild, [...COMMON, ...parameters], {
    cwd: dashboard,
    env: { ...env, NODE_PATH: nodePath },
    stdio: 'inherit',
  });
  if (error) throw error;
  if (status !== 0) throw new Error(`esbuild ended with ${status}`);
}

/** @typedef {{ esbuild?: string, parameters?: string[] }} How */

/**
 * Bundles the server's sources into the folder `target`.
 * @param {string} target
 * @param {How} [how]
 */
export function bundleServer(target, { esbuild, parameters = [] } = {}) {
  run(
    esbuild,
    [...serverEntries(), ...SERVER, `--outdir=${target}`, '--entry-names=[name]', ...parameters],
    SIDES.server,
  );
}

/**
 * Bundles the page's script and style into the folder `target`.
 * @param {string} target
 * @param {How} [how]
 */
export function bundlePage(target, { esbuild, parameters = [] } = {}) {
  run(
    esbuild,
    ['page/js/page.js', 'page/style/page.css', ...PAGE, `--outdir=${target}`, '--entry-names=[name]', ...parameters],
    SIDES.page,
  );
}

/** The page with everything it needs for its first paint in it: one request, and nothing to wait for. */
function withoutFiles(html, { script, style }) {
  if (/<\/(script|style)|<!--/i.test(script + style)) throw new Error('The bundle would end its own element');
  /** @type {[RegExp, () => string][]} */
  const replaced = [
    [/ *<script type="importmap">.*?<\/script>\n/s, () => ''],
    [/<link rel="stylesheet" href="\/style\/page.css" \/>/, () => `<style>${style}</style>`],
    [/<script type="module" src="\/js\/page.js"><\/script>/, () => `<script>${script}</script>`],
  ];
  return replaced.reduce((text, [pattern, by]) => {
    if (!pattern.test(text)) throw new Error(`index.html lacks ${pattern}`);
    return text.replace(pattern, by);
  }, html);
}

function licences() {
  const files = Object.values(SIDES)
    .map((folder) => join(folder, 'licences.txt'))
    .filter(existsSync);
  return files.map((file) => readFileSync(file, 'utf8')).join('\n');
}

/** Makes the folder `target` anew, with what is installed and nothing else. */
export function bundle(target, esbuild) {
  rmSync(target, { recursive: true, force: true });
  const page = join(target, 'page');
  mkdirSync(page, { recursive: true });
  bundleServer(target, { esbuild });
  bundlePage(page, { esbuild });
  const inlined = (name) => {
    const text = readFileSync(join(page, name), 'utf8').trimEnd();
    rmSync(join(page, name));
    return text;
  };
  const html = readFileSync(join(dashboard, 'page/index.html'), 'utf8');
  writeFileSync(
    join(page, 'index.html'),
    withoutFiles(html, { script: inlined('page.js'), style: inlined('page.css') }),
  );
  copyFileSync(join(dashboard, 'page/icon.svg'), join(page, 'icon.svg'));
  const { name, version, type } = JSON.parse(readFileSync(join(dashboard, 'package.json'), 'utf8'));
  writeFileSync(join(target, 'package.json'), `${JSON.stringify({ name, version, type }, null, 2)}\n`);
  writeFileSync(join(target, 'third-party.txt'), licences());
}

if (argv[1] && basename(argv[1]) === 'bundle.js') {
  const [target, esbuild] = argv.slice(2);
  if (!target) {
    console.error('usage: node tools/bundle.js TARGET [ESBUILD]');
    exit(2);
  }
  bundle(resolve(target), esbuild);
}
