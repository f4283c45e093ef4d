/** @typedef {{ view: string, path?: string }} Route */
/** @typedef {{ overview: import('../../types/api.js').Overview, route?: Route }} View */

const VIEWS = new Set(['services', 'docker', 'ports', 'settings', 'about']);

function decoded(text) {
  try {
    return decodeURIComponent(text);
  } catch {
    return null;
  }
}

/**
 * The view that a location hash names: { view } or { view: 'project', path }.
 * @returns {Route}
 */
export function routeOf(hash) {
  const name = hash.replace(/^#?\/?/, '');
  if (name === '') return { view: 'home' };
  if (VIEWS.has(name)) return { view: name };
  const path = name.startsWith('p/') ? decoded(name.slice(2)) : null;
  return path ? { view: 'project', path } : { view: 'unknown' };
}

export const hashOfProject = (path) => `#/p/${encodeURIComponent(path)}`;
