import { firstOf, textOr } from '../folder.js';

const HERE = '127.0.0.1:8000';

export function gemfile(folder, file) {
  const text = folder.text(file);
  if (folder.has('config/application.rb')) {
    const server = folder.has('bin/rails') ? 'bin/rails server' : 'bundle exec rails server';
    return { kind: 'Rails', command: folder.has('bin/dev') ? 'bin/dev' : server };
  }
  if (folder.has('_config.yml')) return { kind: 'Jekyll', command: 'bundle exec jekyll serve' };
  if (folder.has('config.ru')) return { command: 'bundle exec rackup' };
  if (/\bsinatra\b/.test(text)) {
    const entry = ['app.rb', 'server.rb', 'main.rb'].find((name) => folder.has(name));
    return { kind: 'Sinatra', command: entry && `bundle exec ruby ${entry}` };
  }
  return {};
}

/** Without a Gemfile: one that has it was told by it. */
export function jekyll(folder, file) {
  const looksLikeIt = ['_posts', '_layouts', '_includes', 'index.md'].some((name) => folder.has(name));
  return { name: textOr(folder.table(file, 'YAML').title), command: looksLikeIt ? 'jekyll serve' : undefined };
}

function phpServer(folder) {
  const root = ['public', 'web', 'www'].find((name) => folder.has(`${name}/index.php`));
  if (root) return `php -S ${HERE} -t ${root}`;
  return folder.has('index.php') ? `php -S ${HERE}` : undefined;
}

export function composer(folder, file) {
  const manifest = folder.table(file, 'JSON');
  const script = firstOf(['dev', 'start', 'serve'], manifest.scripts);
  const isLaravel = folder.has('artisan');
  const own = isLaravel ? 'php artisan serve' : phpServer(folder);
  return {
    kind: isLaravel ? 'Laravel' : folder.has('symfony.lock') ? 'Symfony' : undefined,
    name: textOr(manifest.name)?.split('/').pop(),
    version: textOr(manifest.version),
    command: script ? `composer run ${script}` : own,
  };
}

export function phpPage(folder) {
  return { kind: folder.has('wp-settings.php') ? 'WordPress' : undefined, command: phpServer(folder) };
}

export function staticSite() {
  return { command: `python3 -m http.server --bind ${HERE.replace(':', ' ')}` };
}

export function hugo(folder, file) {
  const settings = folder.table(file, file.endsWith('.toml') ? 'TOML' : 'YAML');
  return { name: textOr(settings.title), command: 'hugo server' };
}

export function mdbook(folder, file) {
  return { name: textOr(folder.table(file, 'TOML').book?.title), command: 'mdbook serve' };
}
