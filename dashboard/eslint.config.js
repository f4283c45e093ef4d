import js from '@eslint/js';
import globals from 'globals';

export default [
  { ignores: ['**/vendor/', 'node_modules/'] },
  js.configs.recommended,
  {
    rules: {
      eqeqeq: 'error',
      'no-shadow': 'error',
      'no-var': 'error',
      'object-shorthand': 'error',
      'prefer-const': 'error',
      'prefer-template': 'error',
      'no-implicit-coercion': 'error',
      'no-promise-executor-return': 'off',
      // Escape characters of terminals are matched on purpose.
      'no-control-regex': 'off',
    },
  },
  { files: ['page/js/**'], languageOptions: { globals: globals.browser } },
  { ignores: ['page/js/**'], languageOptions: { globals: globals.node } },
  // Tests of the page hold functions that run in it.
  {
    files: ['test/page*.js', 'test/bundle.test.js', 'test/support/{browser,page}.js'],
    languageOptions: { globals: globals.browser },
  },
];
