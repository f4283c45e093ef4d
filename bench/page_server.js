// A server for measuring: keeps the shell's side of the contract, serves one page of about 26 KB, and writes when
// things happened (monotonic nanoseconds) as lines into the file that BENCH_EVENTS names.

const fs = require("fs");
const http = require("http");

const note = (event) => fs.appendFileSync(process.env.BENCH_EVENTS, `${event} ${process.hrtime.bigint()}\n`);
note("server started");

const rows = Array.from(
  { length: 150 },
  (_, i) => `<li class="row"><b>project-${i}</b> <span>~/projects/project-${i}</span> <code>:${3000 + i}</code> ready</li>`,
);
const page = `<!doctype html><meta charset="utf-8"><title>Measured page</title>
<style>
  :root { color-scheme: light dark; font: 14px system-ui; }
  body { margin: 60px 40px; background: #f3f4f0; color: #161816; }
  @media (prefers-color-scheme: dark) { body { background: #161816; color: #f3f4f0; } }
  .row { padding: 6px 10px; border-bottom: 1px solid #8884; list-style: none; }
</style>
<h1>Projects</h1><ul id="page">${rows.join("\n")}</ul>
<script>
  requestAnimationFrame(() => requestAnimationFrame(() => fetch("/painted", { method: "POST" })));
</script>`;

const state = JSON.stringify({
  projects: Array.from({ length: Number(process.env.BENCH_PROJECTS || 10) }, (_, i) => ({
    name: `project-${i}`, path: `/home/me/project-${i}`, running: true, ports: [3000 + i],
  })),
  stats: { running: 0, postgres: 0, redis: 0, containers: 0 },
});

const server = http.createServer((request, response) => {
  if (request.url === "/") {
    note("page requested");
    response.setHeader("Content-Type", "text/html");
    response.end(page);
  } else if (request.url === "/painted") {
    note("painted");
    response.end();
  } else {
    response.setHeader("Content-Type", "application/json");
    response.end(state);
  }
});
server.listen(0, "localhost", () => {
  note("server ready");
  console.log(`HARBROOK_PORT ${server.address().port}`);
});
process.on("SIGTERM", () => process.exit());
if (process.env.HARBROOK_PARENT) process.stdin.on("end", () => process.exit()).resume();
