import { createHash, timingSafeEqual } from 'node:crypto';

const digest = (text) => createHash('sha256').update(text).digest();

/** Makes a test of a request's token whose time says nothing of the right one, nor of its length. */
export function tokenCheck(token) {
  const expected = digest(token);
  return (candidate) => typeof candidate === 'string' && timingSafeEqual(digest(candidate), expected);
}

/** Only the name localhost is served: a foreign name that was made to resolve to this machine is turned away. */
export function hostIsLocal(request) {
  return request.headers.host === `localhost:${request.socket.localPort}`;
}

/** True unless a browser says that the request was made by a page of another origin. */
export function originIsOwn(request) {
  const { origin } = request.headers;
  if (origin !== undefined && origin !== `http://localhost:${request.socket.localPort}`) return false;
  const site = request.headers['sec-fetch-site'];
  return site === undefined || site === 'same-origin' || site === 'none';
}

/** A header that no page of another origin can set without asking first, which is never granted. */
export function mayChange(request) {
  return request.headers['x-harbrook'] === '1';
}

export const SECURITY_HEADERS = {
  'Content-Security-Policy':
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; " +
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'; require-trusted-types-for 'script'",
  'Cross-Origin-Opener-Policy': 'same-origin',
  'Cross-Origin-Resource-Policy': 'same-origin',
  'Permissions-Policy': 'camera=(), geolocation=(), microphone=()',
  'Referrer-Policy': 'no-referrer',
  'X-Content-Type-Options': 'nosniff',
  'X-Frame-Options': 'DENY',
};
