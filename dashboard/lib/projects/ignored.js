/** Folders that hold what was built, fetched or vendored, not the user's own projects. */
const IGNORED = new Set([
  'node_modules', 'bower_components', 'vendor', 'third_party', 'third-party', 'thirdparty', 'external', 'deps', 'Pods', 'Carthage',
  'target', 'build', 'dist', 'out', 'bin', 'obj', 'coverage', 'DerivedData', 'site-packages', '__pycache__', 'venv', 'env',
  'virtualenv', 'elm-stuff', 'testdata', 'fixtures', 'tmp', 'temp', 'Library', 'snap',
]);

export const isIgnored = (name) => name.startsWith('.') || IGNORED.has(name) || /^(cmake-)?build-/.test(name);
