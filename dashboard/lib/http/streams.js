const MOST_WAITING = 1024 * 1024;

const BEAT = 10_000;

/** Tells of every change by its revision, for as long as the client listens, and between changes that it is alive. */
export function streamEvents(dashboard, response) {
  response.writeHead(200, { 'Content-Type': 'text/event-stream; charset=utf-8', 'Cache-Control': 'no-store' });
  const tell = () => response.write(`data: ${dashboard.revision}\n\n`);
  const beat = setInterval(() => response.write(':\n\n'), BEAT);
  tell();
  dashboard.on('change', tell);
  response.on('close', () => {
    clearInterval(beat);
    dashboard.off('change', tell);
  });
}

/**
 * Sends the kept output of a project's run, by the time of its start or else of its last one, and, with `follow`, what is
 * added to it until that run ends.
 */
export function streamLog(runner, { path, startedAt, follow }, response) {
  response.writeHead(200, { 'Content-Type': 'text/plain; charset=utf-8', 'Cache-Control': 'no-store' });
  const run = runner.run(path);
  const log = run?.log;
  response.write(runner.logText(path, startedAt));
  const isLast = startedAt === undefined || startedAt === run?.startedAt;
  if (!follow || !isLast || !runner.isRunning(path)) {
    response.end();
    return;
  }
  const unfollow = log.follow((bytes) => {
    // A reader that cannot keep up misses output rather than making the dashboard hold all of it.
    if (response.writableLength < MOST_WAITING) response.write(bytes);
  });
  const ended = () => {
    if (runner.run(path)?.log !== log || !runner.isRunning(path)) response.end();
  };
  runner.on('change', ended);
  response.on('close', () => {
    unfollow();
    runner.off('change', ended);
  });
}
