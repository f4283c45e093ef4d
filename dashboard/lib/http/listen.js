import { createServer } from 'node:http';

const ATTEMPTS = 8;

function listen(handler, port, host) {
  return new Promise((resolve, reject) => {
    const server = createServer({ requestTimeout: 15_000, headersTimeout: 10_000, maxHeaderSize: 16_384 }, handler);
    server.once('error', reject);
    server.listen({ port, host, ipv6Only: host === '::1' }, () => {
      server.off('error', reject);
      server.on('error', (error) => console.error(`HTTP server: ${error.message}`));
      resolve(server);
    });
  });
}

// "localhost" may mean either loopback address to a browser. Both are taken, so that no other program can answer (and
// receive the token) on the one that was left free.
async function listenOnBoth(handler, port) {
  const four = await listen(handler, port, '127.0.0.1');
  const actualPort = four.address().port;
  try {
    const six = await listen(handler, actualPort, '::1');
    return { port: actualPort, servers: [four, six] };
  } catch (error) {
    if (error.code === 'EADDRNOTAVAIL' || error.code === 'EAFNOSUPPORT') return { port: actualPort, servers: [four] };
    four.close();
    throw error;
  }
}

/**
 * Listens on the loopback interface at `port`; when it is taken and `fallback` is true, at one the system chooses.
 * Returns the port in use and `close()`, which also ends open connections.
 */
export async function listenOnLocalhost(handler, { port, fallback }) {
  let lastError;
  for (let attempt = 0; attempt < ATTEMPTS; attempt += 1) {
    try {
      const { port: actualPort, servers } = await listenOnBoth(handler, attempt === 0 ? port : 0);
      const close = () => {
        for (const server of servers) {
          server.close();
          server.closeAllConnections();
        }
      };
      return { port: actualPort, close };
    } catch (error) {
      lastError = error;
      if (!fallback || (error.code !== 'EADDRINUSE' && error.code !== 'EACCES')) break;
    }
  }
  throw lastError;
}
