// Which ports a browser can do something with.

/** Ports that databases, queues and the like use by default, where no browser is answered. */
const OTHER_PORTS = new Set([
  21, 22, 25, 53, 110, 143, 389, 445, 636, 993, 995, 1433, 1521, 1883, 2379, 3306, 4222, 5432, 5433, 5672, 6379, 6380,
  6432, 7687, 9042, 9092, 9229, 11211, 26257, 27017, 27018, 33060, 50051,
]);
const OTHER_PROGRAMS =
  /^(postgres|postmaster|mysqld|mariadbd|mongod|mongos|redis-server|valkey-server|keydb-server|memcached|sshd|pgbouncer|beam\.smp|cupsd|master|smbd|sqlservr)$/;

/**
 * Whether a browser may be answered at a listening port: not where a database or the like is known to be.
 * @param {{ port: number, process: any, container?: any }} entry
 */
export function isForBrowsers({ port, process, container }) {
  if (process && OTHER_PROGRAMS.test(process.name)) return false;
  const mapping = container?.ports.find((published) => published.port === port);
  return !OTHER_PORTS.has(mapping?.inside ?? port);
}
