// Stands before the bundled dashboard: writes when things happened (monotonic nanoseconds) as lines into the file that
// BENCH_EVENTS names, as page_server.js does, and answers the page's reports. All else is the dashboard's.
import { appendFileSync } from 'node:fs';
import { Server } from 'node:http';

const note = (event) => appendFileSync(process.env.BENCH_EVENTS, `${event} ${process.hrtime.bigint()}\n`);
note('server started');

const { emit } = Server.prototype;
Server.prototype.emit = function (event, request, response, ...rest) {
  if (event === 'listening') note('server ready');
  if (event === 'request' && request.url === '/') note('page requested');
  if (event !== 'request' || !request.url.startsWith('/bench/')) return emit.call(this, event, request, response, ...rest);
  note(decodeURIComponent(request.url.slice('/bench/'.length)));
  response.end();
  return true;
};

await import('./dashboard.js');
