// Stands in for a container engine with a few containers, and for the PostgreSQL and Redis servers in two of them.
// Prints "ready" when all of it answers.
const http = require('node:http');
const net = require('node:net');
const { mkdirSync } = require('node:fs');
const { join } = require('node:path');

// An engine holds the ports of its containers by a program of that name.
process.title = 'docker-proxy';

const home = process.cwd();
const socket = join(home, '.docker/run/docker.sock');

function container([id, name, image, state, status, port, inside], project) {
  const labels = project && {
    'com.docker.compose.project': project, 'com.docker.compose.project.working_dir': join(home, 'projects', project),
  };
  return {
    Id: id, Names: [`/${name}`], Image: image, State: state, Status: status, Labels: labels ?? {},
    Ports: port ? [{ IP: '127.0.0.1', PublicPort: port, PrivatePort: inside, Type: 'tcp' }] : [],
  };
}

const containers = [
  ...[
    ['5f0c1e9a7b34', 'shop-db-1', 'postgres:17-alpine', 'running', 'Up 3 hours (healthy)', 5432, 5432],
    ['a8d2417c60ef', 'shop-cache-1', 'redis:7-alpine', 'running', 'Up 3 hours', 6379, 6379],
    ['c91b38e5d2a0', 'shop-mail-1', 'axllent/mailpit:v1.21', 'running', 'Up 3 hours', 8025, 8025],
    ['e47a90b1f6c8', 'shop-seed-1', 'shop-seed:latest', 'exited', 'Exited (0) 3 hours ago'],
  ].map((entry) => container(entry, 'shop')),
  container(['17d6c3f8a9b2', 'tiles', 'maptiler/tileserver-gl:v5.0.0', 'running', 'Up 2 days', 8081, 8080]),
  container(['90be52a4c7d1', 'scratch', 'debian:bookworm-slim', 'exited', 'Exited (130) 6 days ago']),
];

const ANSWERS = { '/version': { Version: '27.3.1' }, '/containers/json': containers };

function engine(request, response) {
  const path = request.url.split('?')[0];
  response.writeHead(path === '/events' || ANSWERS[path] ? 200 : 404, { 'Content-Type': 'application/json' });
  if (path === '/events') response.flushHeaders(); // Nothing ever happens, and the stream stays open.
  else response.end(JSON.stringify(ANSWERS[path] ?? {}));
}

const INFORMATION = '# Server\r\nredis_version:7.4.1\r\n# Keyspace\r\ndb0:keys=1284,expires=310,avg_ttl=0\r\n';
const TALKS = {
  5432: (connection) => connection.once('data', () => connection.write('N')),
  6379: (connection) => connection.once('data', () => connection.write(`+PONG\r\n$${INFORMATION.length}\r\n${INFORMATION}\r\n`)),
};

const listening = containers.flatMap(({ Ports }) => Ports).map(({ PublicPort: port }) => new Promise((resolve) => {
  const server = net.createServer((connection) => {
    connection.on('error', () => {});
    TALKS[port]?.(connection);
  });
  server.listen(port, '127.0.0.1', resolve);
}));
mkdirSync(join(home, '.docker/run'), { recursive: true });
listening.push(new Promise((resolve) => http.createServer(engine).listen(socket, resolve)));
Promise.all(listening).then(() => console.log('ready'));
