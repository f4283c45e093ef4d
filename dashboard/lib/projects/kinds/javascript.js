import { firstOf, tableOr, textOr } from '../folder.js';
import { workspaceOf } from './workspaces.js';

const SCRIPTS = ['dev', 'start:dev', 'start', 'serve', 'develop', 'preview'];
const TASKS = ['dev', 'start', 'serve'];

const LOCK_FILES = [
  ['pnpm-lock.yaml', 'pnpm'],
  ['yarn.lock', 'yarn'],
  ['bun.lock', 'bun'],
  ['bun.lockb', 'bun'],
  ['package-lock.json', 'npm'],
];

// The more particular before the more general.
const FRAMEWORKS = [
  ['next', 'Next.js'],
  ['nuxt', 'Nuxt'],
  ['@sveltejs/kit', 'SvelteKit'],
  ['astro', 'Astro'],
  ['@angular/core', 'Angular'],
  ['@remix-run/react', 'Remix'],
  ['@react-router/dev', 'React Router'],
  ['@solidjs/start', 'SolidStart'],
  ['gatsby', 'Gatsby'],
  ['@docusaurus/core', 'Docusaurus'],
  ['vitepress', 'VitePress'],
  ['@11ty/eleventy', 'Eleventy'],
  ['expo', 'Expo'],
  ['electron', 'Electron'],
  ['@strapi/strapi', 'Strapi'],
  ['@nestjs/core', 'NestJS'],
  ['vite', 'Vite'],
  ['react-scripts', 'React'],
  ['@vue/cli-service', 'Vue'],
  ['parcel', 'Parcel'],
  ['hono', 'Hono'],
  ['express', 'Express'],
  ['fastify', 'Fastify'],
  ['koa', 'Koa'],
  ['typescript', 'TypeScript'],
];

function declaredManager(manifest) {
  const declared = textOr(manifest.packageManager)?.split('@')[0];
  return LOCK_FILES.some(([, manager]) => manager === declared) ? declared : undefined;
}

/** The package manager that a folder itself speaks of, or undefined. */
function managerIn(folder, manifest) {
  return declaredManager(manifest) ?? LOCK_FILES.find(([file]) => folder.has(file))?.[1];
}

function packageVersion(manifest) {
  // Private packages carry this one because they must have some.
  return manifest.version === '0.0.0' ? undefined : textOr(manifest.version);
}

function startCommand(folder, manifest, manager) {
  const scripts = tableOr(manifest.scripts);
  const script = SCRIPTS.find((name) => Object.hasOwn(scripts, name) && textOr(scripts[name]));
  if (script) return `${manager} run ${script}`;
  if (folder.has('server.js')) return 'node server.js';
  if (manager === 'bun' && folder.has('index.ts')) return 'bun run index.ts';
  return undefined;
}

export function packageJson(folder, file) {
  const manifest = folder.table(file, 'JSON');
  const packages = { ...tableOr(manifest.dependencies), ...tableOr(manifest.devDependencies) };
  const own = managerIn(folder, manifest);
  const root = own ? null : workspaceOf(folder);
  const manager = own ?? (root && managerIn(root.folder, root.manifest)) ?? 'npm';
  const command = startCommand(folder, manifest, manager);
  const installed = [folder, root?.folder].some((at) => at?.has('node_modules') || at?.has('.pnp.cjs'));
  return {
    kind: FRAMEWORKS.find(([name]) => Object.hasOwn(packages, name))?.[1] ?? (manager === 'bun' ? 'Bun' : undefined),
    name: textOr(manifest.name),
    version: packageVersion(manifest),
    command,
    needsInstall: Boolean(command) && Object.keys(packages).length > 0 && !installed,
  };
}

export function deno(folder, file) {
  const manifest = folder.table(file, 'JSON with comments');
  const task = firstOf(TASKS, manifest.tasks);
  return {
    name: textOr(manifest.name)?.split('/').pop(),
    version: textOr(manifest.version),
    command: task ? `deno task ${task}` : folder.has('main.ts') ? 'deno run --allow-net main.ts' : undefined,
  };
}
