// A small view library. A view is a function from data to a tree of plain nodes made by `h`; `render` changes the
// document as little as the difference to the tree before asks for, so focus, scroll positions and selections last.

const SVG = 'http://www.w3.org/2000/svg';
const PROPERTIES = new Set(['value', 'checked', 'disabled', 'hidden', 'selected']);

/**
 * A node of the tree. In `props`, names that begin with "on" are event handlers, `key` identifies a child among its
 * siblings, and `mount(element)` runs once the element is in the document; a function it returns runs at its removal.
 */
export function h(tag, props, ...children) {
  const kept = children.flat(Infinity).filter((child) => child !== null && child !== undefined && child !== false && child !== '');
  return { tag, props: props ?? {}, key: props?.key, children: kept.map((child) => (child.tag ? child : { text: String(child) })) };
}

function setProperty(element, name, value, before) {
  if (name === 'key' || name === 'mount') return;
  if (name.startsWith('on')) element[name.toLowerCase()] = value ?? null;
  else if (PROPERTIES.has(name)) {
    // What is being typed is the user's, whatever arrives meanwhile.
    if (name === 'value' && document.activeElement === element && before !== undefined) return;
    if (element[name] !== value) element[name] = value ?? (name === 'value' ? '' : false);
  } else if (value === null || value === undefined || value === false) element.removeAttribute(name);
  else element.setAttribute(name, value === true ? '' : value);
}

function create(node, inSvg, mounts) {
  if (node.text !== undefined) {
    node.element = document.createTextNode(node.text);
    return node.element;
  }
  const isSvg = inSvg || node.tag === 'svg';
  const element = isSvg ? document.createElementNS(SVG, node.tag) : document.createElement(node.tag);
  node.element = element;
  for (const child of node.children) element.append(create(child, isSvg, mounts));
  for (const [name, value] of Object.entries(node.props)) {
    if (value !== null && value !== undefined && value !== false) setProperty(element, name, value);
  }
  if (node.props.mount) mounts.push(node);
  return element;
}

function dismantle(node) {
  node.unmount?.();
  node.children?.forEach(dismantle);
}

const sameKind = (one, other) => one.tag === other.tag && one.key === other.key;

function patch(before, after, mounts) {
  const { element } = before;
  after.element = element;
  after.unmount = before.unmount;
  if (after.text !== undefined) {
    if (after.text !== before.text) element.data = after.text;
    return;
  }
  for (const name of Object.keys(before.props)) {
    if (!(name in after.props)) setProperty(element, name, undefined, before.props[name]);
  }
  for (const [name, value] of Object.entries(after.props)) {
    if (value !== before.props[name]) setProperty(element, name, value, before.props[name]);
  }
  patchChildren(element, before.children, after.children, mounts);
}

function patchChildren(element, before, after, mounts) {
  const keyed = new Map();
  const unkeyed = [];
  for (const child of before) {
    if (child.key === undefined) unkeyed.push(child);
    else keyed.set(child.key, child);
  }
  const isSvg = element.namespaceURI === SVG;
  const kept = new Set();
  const matches = after.map((child) => {
    const index = unkeyed.findIndex((candidate) => sameKind(candidate, child));
    const candidate = child.key === undefined ? (index >= 0 ? unkeyed.splice(0, index + 1).at(-1) : null) : keyed.get(child.key);
    if (!candidate || !sameKind(candidate, child)) return null;
    kept.add(candidate);
    return candidate;
  });
  for (const child of before) {
    if (kept.has(child)) continue;
    dismantle(child);
    child.element.remove();
  }
  let next = element.firstChild;
  after.forEach((child, index) => {
    if (matches[index]) patch(matches[index], child, mounts);
    else create(child, isSvg, mounts);
    if (child.element === next) next = next.nextSibling;
    else element.insertBefore(child.element, next);
  });
}

const rendered = new WeakMap();

/** Makes the content of `container` what `nodes` say. */
export function render(container, ...nodes) {
  const after = h('root', null, nodes).children;
  const mounts = [];
  if (!rendered.has(container)) container.replaceChildren();
  patchChildren(container, rendered.get(container) ?? [], after, mounts);
  rendered.set(container, after);
  for (const node of mounts) node.unmount = node.props.mount(node.element);
}
