import { createHash } from 'node:crypto';
import { readdirSync } from 'node:fs';
import { readFile } from 'node:fs/promises';
import { extname, join } from 'node:path';

const TYPES = {
  '.html': 'text/html; charset=utf-8',
  '.css': 'text/css; charset=utf-8',
  '.js': 'text/javascript; charset=utf-8',
  '.mjs': 'text/javascript; charset=utf-8',
  '.map': 'application/json; charset=utf-8',
  '.svg': 'image/svg+xml',
  '.png': 'image/png',
};

function listFiles(directory, prefix = '') {
  return readdirSync(directory, { withFileTypes: true }).flatMap((entry) => {
    const relative = `${prefix}/${entry.name}`;
    if (entry.isDirectory()) return listFiles(join(directory, entry.name), relative);
    return TYPES[extname(entry.name)] ? [relative] : [];
  });
}

/**
 * Serves the files below `directory`. What can be asked for is listed once at the start: a request path is only ever
 * looked up in that list, never joined to a directory.
 */
export function staticFiles(directory) {
  const known = new Map(listFiles(directory).map((path) => [path, join(directory, path)]));
  known.set('/', join(directory, 'index.html'));
  const loaded = new Map();

  async function load(file) {
    const body = await readFile(file);
    return { body, etag: `"${createHash('sha1').update(body).digest('base64url')}"`, type: TYPES[extname(file)] };
  }

  return async function serve(pathname, request, response) {
    const file = known.get(pathname);
    if (!file) return false;
    if (!loaded.has(file)) loaded.set(file, await load(file));
    const { body, etag, type } = loaded.get(file);
    const headers = { 'Content-Type': type, 'Cache-Control': 'no-cache', ETag: etag };
    if (request.headers['if-none-match'] === etag) {
      response.writeHead(304, headers).end();
      return true;
    }
    response.writeHead(200, { ...headers, 'Content-Length': body.length });
    response.end(request.method === 'HEAD' ? undefined : body);
    return true;
  };
}
