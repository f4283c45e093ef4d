import { relative, sep } from 'node:path';
import { listOr, tableOr } from '../folder.js';

const HIGHEST = 4;

/** Whether one part of a path is meant by one part of a pattern, in which "*" stands for any characters. */
function partMatches(pattern, part) {
  const [first, ...rest] = pattern.split('*');
  if (rest.length === 0) return pattern === part;
  if (!part.startsWith(first)) return false;
  let at = first.length;
  for (const piece of rest.slice(0, -1)) {
    const found = part.indexOf(piece, at);
    if (found < 0) return false;
    at = found + piece.length;
  }
  const last = rest.at(-1);
  return part.length - last.length >= at && part.endsWith(last);
}

function pathMatches(pattern, path) {
  if (pattern.length === 0) return path.length === 0;
  const [first, ...rest] = pattern;
  if (first === '**')
    return path.length === 0 ? pathMatches(rest, path) : pathMatches(rest, path) || pathMatches(pattern, path.slice(1));
  return path.length > 0 && partMatches(first, path[0]) && pathMatches(rest, path.slice(1));
}

/** Whether the workspace's patterns, those that begin with "!" among them, mean the package at this relative path. */
export function isMember(patterns, path) {
  const parts = path.split(sep);
  const means = (pattern) =>
    pathMatches(
      pattern.split('/').filter((part) => part !== '' && part !== '.'),
      parts,
    );
  const texts = patterns.filter((pattern) => typeof pattern === 'string' && pattern.length < 300).slice(0, 200);
  return (
    texts.some((pattern) => !pattern.startsWith('!') && means(pattern)) &&
    !texts.some((pattern) => pattern.startsWith('!') && means(pattern.slice(1)))
  );
}

function patternsOf(folder, manifest) {
  const { workspaces } = manifest;
  const own = Array.isArray(workspaces) ? workspaces : listOr(tableOr(workspaces).packages);
  const pnpm = folder.has('pnpm-workspace.yaml') ? folder.table('pnpm-workspace.yaml', 'YAML').packages : [];
  return [...own, ...listOr(pnpm)];
}

/** The root of the workspace that the package in `folder` is a member of: { folder, manifest }, or null. */
export function workspaceOf(folder) {
  let root = folder.parent;
  for (let height = 0; root && height < HIGHEST; height += 1) {
    if (root.has('package.json')) {
      const manifest = root.table('package.json', 'JSON');
      if (isMember(patternsOf(root, manifest), relative(root.path, folder.path))) return { folder: root, manifest };
    }
    root = root.parent;
  }
  return null;
}
