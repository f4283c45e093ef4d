import { ask } from './ask.js';

const TIMEOUT = 800;
const QUESTION = 'PING\r\nINFO\r\n';

function isComplete(bytes) {
  const text = bytes.toString('latin1');
  const [first, second] = text.split('\r\n');
  if (second === undefined) return false;
  if (!first.startsWith('+PONG')) return true;
  const length = /^\$(\d+)$/.exec(second);
  if (length) return text.length >= first.length + second.length + 4 + Number(length[1]) + 2;
  return second.startsWith('-') && text.endsWith('\r\n');
}

/**
 * Asks whether a Redis server (or one that speaks its protocol) listens at `target`: null when not, else
 * { product, version, keys, needsPassword }, with null for what it does not tell.
 */
export async function probeRedis(target) {
  const text = (await ask(target, QUESTION, isComplete, TIMEOUT)).toString('utf8');
  if (text.startsWith('-NOAUTH')) return { product: 'Redis', version: null, keys: null, needsPassword: true };
  if (!text.startsWith('+PONG')) return null;
  const field = (name) => new RegExp(`^${name}:(.*?)\\r?$`, 'm').exec(text)?.[1];
  const valkey = field('valkey_version');
  const counts = [...text.matchAll(/^db\d+:keys=(\d+)/gm)].map((match) => Number(match[1]));
  const knowsKeys = text.includes('# Keyspace');
  return {
    product: valkey ? 'Valkey' : 'Redis',
    version: valkey ?? field('redis_version') ?? null,
    keys: knowsKeys ? counts.reduce((sum, count) => sum + count, 0) : null,
    needsPassword: false,
  };
}
