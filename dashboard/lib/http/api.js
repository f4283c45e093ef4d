import { streamEvents, streamLog } from './streams.js';
import { sendJson } from './respond.js';
import { about } from '../about.js';
import { foldersOf } from '../snapshots.js';

/** @returns {import('../../types/api.js').FolderSettings} */
function settingsOf({ settings, finder }) {
  return {
    folders: foldersOf({ settings, finder }),
    foldersAreDefault: settings.foldersAreDefault,
  };
}

/** The API: for each address the methods it knows. A POST has its body read and checked to be an object already. */
export function apiRoutes(dashboard) {
  return new Map([
    ['/api/state', { GET: ({ response }) => sendJson(response, dashboard.state) }],
    ['/api/overview', { GET: ({ response }) => sendJson(response, dashboard.overview) }],
    ['/api/about', { GET: ({ response }) => sendJson(response, about(dashboard)) }],
    ['/api/events', { GET: ({ response }) => streamEvents(dashboard, response) }],
    [
      '/api/settings',
      {
        GET: ({ response }) => sendJson(response, settingsOf(dashboard)),
        async POST({ body, response }) {
          const { settings, finder } = dashboard;
          const isThere = (folder) => finder.folderExists(folder);
          if (body.folders !== undefined) await settings.setFolders(body.folders);
          if (body.addFolder !== undefined) await settings.addFolder(body.addFolder, isThere);
          if (body.removeFolder !== undefined) await settings.removeFolder(body.removeFolder, isThere);
          sendJson(response, settingsOf(dashboard));
        },
      },
    ],
    [
      '/api/project/start',
      {
        async POST({ body, response }) {
          await dashboard.startProject(body.path);
          sendJson(response, { ok: true });
        },
      },
    ],
    [
      '/api/project/stop',
      {
        async POST({ body, response }) {
          await dashboard.stopProject(body.path);
          sendJson(response, { ok: true });
        },
      },
    ],
    [
      '/api/project/settings',
      {
        async POST({ body, response }) {
          const { path } = dashboard.project(body.path);
          await dashboard.settings.setProject(path, body);
          sendJson(response, { ok: true });
        },
      },
    ],
    [
      '/api/project/runs',
      {
        GET({ url, response }) {
          const { path } = dashboard.project(url.searchParams.get('path'));
          sendJson(response, { runs: dashboard.runner.history(path) });
        },
      },
    ],
    [
      '/api/environment/refresh',
      {
        async POST({ response }) {
          await dashboard.refreshEnvironment();
          const { shell, problem } = dashboard.environment;
          sendJson(response, { shell, problem });
        },
      },
    ],
    [
      '/api/project/log',
      {
        GET({ url, response }) {
          const { path } = dashboard.project(url.searchParams.get('path'));
          const { searchParams } = url;
          const startedAt = searchParams.has('run') ? Number(searchParams.get('run')) : undefined;
          streamLog(dashboard.runner, { path, startedAt, follow: searchParams.get('follow') === '1' }, response);
        },
      },
    ],
  ]);
}
