import { connect } from 'node:net';

/**
 * @typedef {{ port: number, host: string } | { path: string }} Target
 */

/**
 * Connects to `target` ({ port, host } or { path }), sends `question` and collects the reply until `isComplete(bytes)`,
 * the end of the stream or the time-out in milliseconds. Fulfilled with the bytes received, possibly none.
 * @param {Target} target
 */
export function ask(target, question, isComplete, timeout) {
  return new Promise((resolve) => {
    const chunks = [];
    const socket = connect(target);
    const finish = () => {
      clearTimeout(timer);
      socket.destroy();
      resolve(Buffer.concat(chunks));
    };
    const timer = setTimeout(finish, timeout);
    socket.on('connect', () => socket.write(question));
    socket.on('data', (chunk) => {
      chunks.push(chunk);
      if (isComplete(Buffer.concat(chunks))) finish();
    });
    socket.on('error', finish);
    socket.on('end', finish);
    socket.on('close', finish);
  });
}
