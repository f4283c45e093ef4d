// node tools/vendor.js
// Copies what the bundles take from packages, as it is in node_modules, to vendor/ (the server's) and page/vendor/ (the
// page's), with the licences. node_modules is what `npm ci` has made, so every byte has passed the lock file's checks.
import { existsSync, mkdirSync, mkdtempSync, readFileSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { basename, dirname, join } from 'node:path';
import { argv } from 'node:process';
import { bundlePage, bundleServer, dashboard, SIDES } from './bundle.js';

const IN_PACKAGE = /^node_modules\/((?:@[^/]+\/)?[^/]+)\/(.+)$/;

/** The files that a bundle reads, relative to the dashboard's folder. */
function inputsOf(bundleIt) {
  const folder = mkdtempSync(join(tmpdir(), 'harbrook-vendor-'));
  try {
    const metafile = join(folder, 'meta.json');
    bundleIt(folder, { parameters: [`--metafile=${metafile}`] });
    return Object.keys(JSON.parse(readFileSync(metafile, 'utf8')).inputs);
  } finally {
    rmSync(folder, { recursive: true });
  }
}

function licenceOf(name) {
  const folder = join(dashboard, 'node_modules', name);
  const { version, license } = JSON.parse(readFileSync(join(folder, 'package.json'), 'utf8'));
  const file = readdirSync(folder).find((entry) => /^(licen[cs]e|copying)/i.test(entry));
  if (!file) throw new Error(`${name} comes without its licence`);
  return `${name} ${version} (${license})\n\n${readFileSync(join(folder, file), 'utf8').trim()}\n`;
}

/** What belongs into the vendor folder of a bundle: a map from path to content. */
function contentOf(bundleIt) {
  const content = new Map();
  const packages = new Set();
  const take = (path) => content.set(path, readFileSync(join(dashboard, 'node_modules', path)));
  for (const input of inputsOf(bundleIt)) {
    const [, name, file] = IN_PACKAGE.exec(input) ?? [];
    if (!name) continue;
    packages.add(name);
    take(`${name}/${file}`);
    take(`${name}/package.json`);
  }
  const licences = [...packages].sort().map(licenceOf);
  if (licences.length > 0) content.set('licences.txt', Buffer.from(licences.join(`\n${'-'.repeat(80)}\n\n`)));
  return content;
}

/** For each vendor folder what belongs there: a map from path to content. */
export const vendored = () =>
  new Map([
    [SIDES.server, contentOf(bundleServer)],
    [SIDES.page, contentOf(bundlePage)],
  ]);

if (argv[1] && basename(argv[1]) === 'vendor.js') {
  if (!existsSync(join(dashboard, 'node_modules'))) throw new Error('Run `npm ci` first');
  for (const [folder, content] of vendored()) {
    rmSync(folder, { recursive: true, force: true });
    for (const [path, bytes] of content) {
      mkdirSync(dirname(join(folder, path)), { recursive: true });
      writeFileSync(join(folder, path), bytes);
    }
  }
}
