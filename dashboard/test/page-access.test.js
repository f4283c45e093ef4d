import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { createServer } from 'node:net';
import { join } from 'node:path';
import { test } from 'node:test';
import { findBrowser, openBrowser } from './support/browser.js';
import { fakeEngine, listen } from './support/engine.js';
import { makeHome, startDashboard, writeTree } from './support/machine.js';
import { describePage, go, ready, servingPackage } from './support/page.js';

const CONTROLS = new Set(['button', 'link', 'textbox', 'searchbox', 'checkbox', 'switch', 'combobox']);
const LARGE = 24; // pixels; from there on less contrast will do

/** A home with a project whose container publishes a port, and views to look at. */
async function furnish(t) {
  const home = await makeHome(t);
  const shop = join(home, 'projects/shop');
  await writeTree(home, {
    'projects/shop/package.json': servingPackage('2.4.1'),
    'projects/failing/package.json': { name: 'failing', scripts: { dev: 'echo "EADDRINUSE :::3000" >&2; exit 1' } },
    'projects/broken/package.json': '{',
  });
  const { port } = await listen(t, createServer());
  const engine = await fakeEngine(t, home, {
    containers: [
      {
        Id: 'c'.repeat(64),
        Names: ['/shop-db-1'],
        Image: 'postgres:17',
        State: 'running',
        Status: 'Up 2 hours',
        Ports: [{ PrivatePort: 5432, PublicPort: port, IP: '127.0.0.1' }],
        Labels: { 'com.docker.compose.project': 'shop', 'com.docker.compose.project.working_dir': shop },
      },
      {
        Id: 'd'.repeat(64),
        Names: ['/scratch'],
        Image: 'debian',
        State: 'exited',
        Status: 'Exited (130)',
        Ports: [],
        Labels: {},
      },
    ],
  });
  const dashboard = await startDashboard(t, home, { DOCKER_HOST: `unix://${engine.path}` });
  const overview = await dashboard.until(
    ({ projects, services, ports }) =>
      projects.length === 3 && services.docker.available && ports.some((entry) => entry.container),
  );
  const pathOf = (name) => overview.projects.find((project) => project.name === name).path;
  await dashboard.post('api/project/start', { path: pathOf('shop') });
  await dashboard.post('api/project/start', { path: pathOf('failing') });
  await dashboard.until(
    ({ projects }) => projects.some(({ run }) => run?.ended) && projects.some(({ ports }) => ports.length > 0),
  );
  const pages = ['shop', 'failing', 'broken'].map((name) => `#/p/${encodeURIComponent(pathOf(name))}`);
  return {
    address: dashboard.address,
    port,
    views: [
      '#/',
      '#/services',
      '#/docker',
      '#/ports',
      '#/settings',
      '#/about',
      ...pages,
      '#/p/%2Fnowhere',
      '#/unknown',
    ],
  };
}

const flat = (node) => [node, ...(node.children ?? []).flatMap(flat)];

/** Runs in the page: every text that is shown with too little contrast to what lies behind it. */
function faintTexts(large) {
  const channels = (colour) => {
    const parts =
      /^color\(srgb ([^)]+)\)$/
        .exec(colour)?.[1]
        .split(/[ /]+/)
        .map((part, index) => (index < 3 ? Number(part) * 255 : Number(part))) ?? colour.match(/[\d.]+/g).map(Number);
    return parts.length === 3 ? [...parts, 1] : parts;
  };
  const over = (front, back) =>
    [0, 1, 2].map((index) => front[index] * front[3] + back[index] * (1 - front[3])).concat(1);
  const behind = (element) => {
    const layers = [];
    for (let at = element; at; at = at.parentElement) layers.unshift(channels(getComputedStyle(at).backgroundColor));
    return layers.reduce((back, layer) => over(layer, back), [255, 255, 255, 1]);
  };
  const luminance = (colour) =>
    colour
      .slice(0, 3)
      .map((value) => value / 255)
      .map((value) => (value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4))
      .reduce((sum, value, index) => sum + value * [0.2126, 0.7152, 0.0722][index], 0);
  const found = [];
  const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
  for (let node = walker.nextNode(); node; node = walker.nextNode()) {
    const element = node.parentElement;
    if (node.nodeValue.trim() === '' || !element.checkVisibility({ visibilityProperty: true })) continue;
    const style = getComputedStyle(element);
    const back = behind(element);
    const [one, other] = [luminance(over(channels(style.color), back)), luminance(back)].sort((a, b) => b - a);
    const ratio = (one + 0.05) / (other + 0.05);
    if (ratio < (parseFloat(style.fontSize) >= large ? 3 : 4.5))
      found.push(`${ratio.toFixed(2)} ${element.className} “${node.nodeValue.trim().slice(0, 40)}”`);
  }
  return found;
}

await describePage('everybody can use the page', (sample) => {
  test('every control of every view has a name', async (t) => {
    const { address, views } = await furnish(t);
    const page = await sample.open(t, '#/', { address });
    const seen = new Set();
    for (const hash of views) {
      await go(page, hash);
      await ready(page);
      const controls = flat(await page.accessibility.snapshot({ interestingOnly: false })).filter(({ role }) =>
        CONTROLS.has(role),
      );
      assert.ok(controls.length > 7, hash);
      assert.deepEqual(
        controls.filter(({ name }) => name.trim() === ''),
        [],
        hash,
      );
      controls.forEach(({ role }) => seen.add(role));
    }
    for (const role of ['button', 'link', 'textbox', 'searchbox', 'switch']) assert.ok(seen.has(role), role);
    await page.evaluate(() => {
      window.openUpdate();
    });
    const dialog = flat(await page.accessibility.snapshot({ interestingOnly: false })).find(
      ({ role }) => role === 'dialog',
    );
    assert.equal(dialog.name, 'Updates');
  });

  test('every text stands out from its ground, light and dark', async (t) => {
    const { address, views } = await furnish(t);
    const page = await sample.open(t, '#/', { address });
    for (const colorScheme of ['light', 'dark']) {
      await page.emulateMedia({ colorScheme });
      for (const hash of views) {
        await go(page, hash);
        await ready(page);
        assert.deepEqual(await page.evaluate(faintTexts, LARGE), [], `${hash}, ${colorScheme}`);
      }
    }
  });

  test('every control can be reached by the keyboard and shows that it has it', async (t) => {
    const { address, views } = await furnish(t);
    const page = await sample.open(t, '#/', { address });
    for (const hash of views) {
      await go(page, hash);
      await ready(page);
      // Ports of other programs come and go meanwhile; what counts is what is there from first to last.
      const count = await page.evaluate(() => {
        /** @type {HTMLElement} */ (document.activeElement).blur();
        window.__missed = new Set(
          [...document.querySelectorAll('a[href], button, input')].filter((control) => control.checkVisibility()),
        );
        return window.__missed.size;
      });
      assert.ok(count > 7, hash);
      for (let step = 0; step < count + 20; step += 1) {
        await page.keyboard.press('Tab');
        const unmarked = await page.evaluate(() => {
          const element = document.activeElement;
          window.__missed.delete(element);
          const isMarked = [null, '::after'].some((part) => getComputedStyle(element, part).outlineStyle !== 'none');
          return element.matches('a, button, input') && !isMarked ? element.outerHTML : null;
        });
        assert.equal(unmarked, null, hash);
      }
      const missed = await page.evaluate(() =>
        [...window.__missed].filter((control) => control.isConnected).map((control) => control.outerHTML),
      );
      assert.deepEqual(missed, [], hash);
    }
  });

  test('a narrow window still says which project failed', async (t) => {
    const { address } = await furnish(t);
    const page = await sample.open(t, '#/', { address });
    await page.setViewportSize({ width: 780, height: 700 });
    for (const words of ['Ended with code 1', 'Broken manifest'])
      await page.getByText(words, { exact: true }).waitFor();
    assert.equal(
      await page.evaluate(() => document.getElementById('page').scrollWidth),
      await page.evaluate(() => document.getElementById('page').clientWidth),
    );
  });

  test('the chosen segment stands out from its ground, light and dark', async (t) => {
    const page = await sample.open(t);
    const chosen = page.getByRole('button', { name: 'All', exact: true });
    for (const [colorScheme, least] of /** @type {const} */ ([
      ['light', 1.1],
      ['dark', 1.5],
    ])) {
      await page.emulateMedia({ colorScheme });
      const [front, back] = await chosen.evaluate((button) => {
        // Relative luminance, as the accessibility guidelines reckon it.
        const luminance = (element) => {
          const parts = getComputedStyle(element)
            .backgroundColor.match(/[\d.]+/g)
            .slice(0, 3)
            .map((part) => Number(part) / 255);
          const [red, green, blue] = parts.map((part) =>
            part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4,
          );
          return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
        };
        return [luminance(button), luminance(button.parentElement)];
      });
      assert.ok(
        (front + 0.05) / (back + 0.05) > least,
        `${colorScheme}: ${((front + 0.05) / (back + 0.05)).toFixed(2)}`,
      );
    }
  });

  test('a published port is shown with its container and its project', async (t) => {
    const { address, port, views } = await furnish(t);
    const page = await sample.open(t, '#/ports', { address });
    const row = page.getByRole('row', { name: String(port) });
    await row.getByText('shop-db-1').waitFor();
    await row.getByText('postgres:17').waitFor();
    await row.getByRole('link', { name: 'shop', exact: true }).click();
    await page
      .getByRole('region', { name: 'Containers' })
      .getByRole('link', { name: `Open port ${port} in the browser` })
      .waitFor();
    await go(page, '#/docker');
    await page.getByRole('link', { name: 'Show project' }).click();
    assert.equal(await page.evaluate(() => location.hash), views[6]);
  });

  test('a program that is called by its name alone is named once', async (t) => {
    const script =
      "process.title='lonely'; require('net').createServer().listen(0, '127.0.0.1', () => console.log('ready'))";
    const lonely = spawn(process.execPath, ['-e', script], { stdio: ['ignore', 'pipe', 'inherit'] });
    t.after(() => lonely.kill());
    await once(lonely.stdout, 'data');
    const page = await sample.open(t, '#/ports');
    const row = page.getByRole('row', { name: String(lonely.pid) });
    await row.waitFor();
    assert.equal((await row.innerText()).match(/lonely/g).length, 1);
  });

  test('the output keeps within the page, whatever is said above it', async (t) => {
    const { address, views } = await furnish(t);
    const page = await sample.open(t, views[7], { address });
    await page.getByText('Port 3000 is taken by another program.').waitFor();
    const [panel, main] = await Promise.all(
      ['.log-panel', '#page'].map((selector) => page.locator(selector).boundingBox()),
    );
    assert.ok(
      panel.y + panel.height <= main.y + main.height,
      `${panel.y + panel.height} against ${main.y + main.height}`,
    );
    assert.equal(
      await page.evaluate(() => {
        const { scrollHeight, clientHeight } = document.getElementById('page');
        return scrollHeight - clientHeight;
      }),
      0,
    );
  });
});

const browser = await findBrowser();

test(
  'numbers and times are written as the user’s system writes them',
  { skip: browser.missing ?? false },
  async (t) => {
    const dashboard = await startDashboard(t, await makeHome(t));
    for (const [locale, number, time] of [
      ['de-DE', '1.284 keys', '18:05'],
      ['en-US', '1,284 keys', '6:05 PM'],
    ]) {
      const context = await openBrowser(t, browser, { locale });
      const page = await context.newPage();
      await page.goto(dashboard.address);
      const written = await page.evaluate(async () => {
        const source = '/js/text.js';
        const { clock, count, period } = await import(source);
        const at = (hour, minute) => new Date().setHours(hour, minute, 0, 0);
        return [count(1284, 'key'), clock(at(18, 5)), period(at(18, 5), at(18, 7)), clock(0)];
      });
      assert.equal(written[0], number);
      // Which of the blanks stands before “PM” has changed with the years.
      assert.equal(written[1].replace(/\s/g, ' '), time);
      assert.ok(written[2].startsWith(time.slice(0, 4)) && written[2].length > time.length, written[2]);
      assert.match(written[3], /19(70|69)/);
    }
  },
);
