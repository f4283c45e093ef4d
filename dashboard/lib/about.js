import { readFileSync } from 'node:fs';
import { join } from 'node:path';

const { version } = JSON.parse(readFileSync(new URL('../package.json', import.meta.url), 'utf8'));

/** What the about view says of this program and where it keeps its files. */
export function about({ dataDirectory }) {
  return {
    version,
    node: process.versions.node,
    dataDirectory,
    log: join(dataDirectory, 'logs', 'server.log'),
    platform: process.platform,
  };
}
