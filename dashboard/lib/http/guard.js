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

/** The headers of every answer. `scripts` and `styles` are further sources of these. */
export const securityHeaders = ({ scripts, styles }) => ({
  'Content-Security-Policy':
    `default-src 'none'; script-src ${["'self'", ...scripts].join(' ')}; style-src ${["'self'", ...styles].join(' ')}; ` +
    "img-src 'self'; connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'; " +
    "require-trusted-types-for 'script'",
  'Cross-Origin-Opener-Policy': 'same-origin',
  'Cross-Origin-Resource-Policy': 'same-origin',
  'Permissions-Policy': 'camera=(), geolocation=(), microphone=()',
  'Referrer-Policy': 'no-referrer',
  'X-Content-Type-Options': 'nosniff',
  'X-Frame-Options': 'DENY',
});

/** The sources of what stands in `html` itself: the digests by which a browser knows that it is the page's own. */
export function inlinedIn(html) {
  const digests = (tag) =>
    [...html.matchAll(new RegExp(`<${tag}(?: type="importmap")?>(.*?)</${tag}>`, 'gs'))].map(
      ([, content]) => `'sha256-${createHash('sha256').update(content).digest('base64')}'`,
    );
  return { scripts: digests('script'), styles: digests('style') };
}
