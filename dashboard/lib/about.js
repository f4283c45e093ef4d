import { readFileSync } from 'node:fs';
import { join } from 'node:path';

/**
 * What the about view says of this program and where it keeps its files.
 * @returns {import('../types/api.js').About}
 */
export function about({ directory, dataDirectory }) {
  const { version } = JSON.parse(readFileSync(join(directory, 'package.json'), 'utf8'));
  return {
    version,
    node: process.versions.node,
    dataDirectory,
    log: join(dataDirectory, 'logs', 'server.log'),
    platform: process.platform,
  };
}
