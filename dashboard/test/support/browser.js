import { existsSync } from 'node:fs';
import { mkdtemp, rm } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { TOKEN } from './machine.js';

const PLACES = [
  process.env.CHROMIUM,
  '/usr/bin/chromium',
  '/usr/bin/chromium-browser',
  '/usr/bin/google-chrome',
  '/Applications/Chromium.app/Contents/MacOS/Chromium',
  '/Applications/Google Chrome.app/Contents/MacOS/Google Chrome',
];

/** @typedef {{ missing?: string, executable?: string, chromium?: import('playwright-core').BrowserType }} Browser */

/**
 * The browser's program, or why the page cannot be tested here.
 * @returns {Promise<Browser>}
 */
export async function findBrowser() {
  const executable = PLACES.find((path) => path && existsSync(path));
  if (!executable) return { missing: 'Chromium is not installed' };
  try {
    return { executable, chromium: (await import('playwright-core')).chromium };
  } catch {
    return { missing: 'playwright-core is not installed (npm ci in dashboard/)' };
  }
}

/**
 * A headless browser with a profile of its own; closed and removed with the test.
 * @param {Browser} browser
 */
export async function openBrowser(t, browser, options = {}) {
  const { executable, chromium } = browser;
  const profile = await mkdtemp(join(tmpdir(), 'harbrook-chromium-'));
  const context = await chromium.launchPersistentContext(profile, {
    executablePath: executable,
    headless: true,
    viewport: { width: 1320, height: 860 },
    args: [
      '--no-sandbox',
      '--disable-gpu',
      '--disable-quic',
      '--no-first-run',
      '--disable-background-networking',
      '--disable-component-update',
      '--disable-sync',
    ],
    ...options,
  });
  t.after(async () => {
    await context.close();
    await rm(profile, { recursive: true, force: true, maxRetries: 5, retryDelay: 100 });
  });
  return context;
}

/** Makes a page believe that it runs in the shell; its messages are collected in `window.__messages`. */
export async function asInShell(page) {
  await page.addInitScript((token) => {
    window.__FC_TOKEN = token;
    window.__messages = [];
    window.webkit = { messageHandlers: { fc: { postMessage: (message) => window.__messages.push(message) } } };
    // Here the script may run before there is a root element.
    const mark = () => document.documentElement?.classList.add('native');
    mark();
    new MutationObserver((_changes, observer) => {
      mark();
      observer.disconnect();
    }).observe(document, { childList: true });
  }, TOKEN);
}
