import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { apiRoutes } from './api.js';
import { hostIsLocal, inlinedIn, mayChange, originIsOwn, securityHeaders, tokenCheck } from './guard.js';
import { Refusal } from '../refusal.js';
import { HttpError, readJson, sendJson } from './respond.js';
import { staticFiles } from './static-files.js';

const STATUS = { invalid: 400, unknown: 404, conflict: 409, failed: 500, ending: 503 };

/** The status and the sentence that the client is told of an error; of an unexpected one only that it was. */
function answerTo(error) {
  if (error instanceof HttpError) return { status: error.status, message: error.message };
  if (error instanceof Refusal) return { status: STATUS[error.reason], message: error.message };
  return { status: 500, message: 'Something went wrong here.', isUnexpected: true };
}

function parseAddress(text) {
  try {
    return new URL(text, 'http://localhost');
  } catch {
    throw new HttpError(400, 'The address is malformed.');
  }
}

/** Makes the request handler: the page's files for anybody on this machine, the API for who knows the token. */
export function createHandler({ dashboard, token, pageDirectory }) {
  const tokenIsRight = tokenCheck(token);
  const serveFile = staticFiles(pageDirectory);
  const routes = apiRoutes(dashboard);
  const headers = Object.entries(securityHeaders(inlinedIn(readFileSync(join(pageDirectory, 'index.html'), 'utf8'))));

  async function answerApi(url, request, response) {
    if (!tokenIsRight(request.headers['x-harbrook-token'])) throw new HttpError(401, 'The token is missing or wrong.');
    if (!originIsOwn(request)) throw new HttpError(403, 'Requests from other origins are not answered.');
    const methods = routes.get(url.pathname);
    if (!methods) throw new HttpError(404, 'There is no such address.');
    const route = methods[request.method];
    if (!route) {
      response.setHeader('Allow', Object.keys(methods).join(', '));
      throw new HttpError(405, 'This method is not allowed here.');
    }
    if (request.method === 'GET') return route({ url, request, response });
    if (!mayChange(request)) throw new HttpError(403, 'A change needs the X-Harbrook header.');
    return route({ url, request, response, body: await readJson(request) });
  }

  async function answer(request, response) {
    for (const [name, value] of headers) response.setHeader(name, value);
    if (!hostIsLocal(request)) throw new HttpError(403, 'Only localhost is served.');
    const url = parseAddress(request.url);
    if (url.pathname.startsWith('/api/')) return answerApi(url, request, response);
    if (request.method !== 'GET' && request.method !== 'HEAD')
      throw new HttpError(405, 'This method is not allowed here.');
    if (!(await serveFile(url.pathname, request, response))) throw new HttpError(404, 'There is no such page.');
    return undefined;
  }

  return (request, response) => {
    answer(request, response).catch((error) => {
      const { status, message, isUnexpected } = answerTo(error);
      if (isUnexpected) console.error(`${request.method} ${request.url}:`, error);
      if (response.headersSent) {
        response.destroy();
        return;
      }
      // The rest of a refused body is not read, so the connection cannot be used again.
      if (request.method === 'POST' && !request.complete) response.setHeader('Connection', 'close');
      sendJson(response, { error: message }, status);
    });
  };
}
