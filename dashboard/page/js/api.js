/** @import { Answers, Bodies } from '../../types/api.js' */
/** @typedef {{ patience?: number, signal?: AbortSignal }} Limits */

// The server's API. Every request carries the token that the shell put into the page, or the one in the address that the
// server prints when it runs without the shell.

function findToken() {
  if (typeof window.__FC_TOKEN === 'string') return window.__FC_TOKEN;
  const inAddress = /^#token=([\w-]+)$/.exec(location.hash);
  if (inAddress) {
    sessionStorage.setItem('harbrook.token', inAddress[1]);
    history.replaceState(null, '', '#/');
  }
  return sessionStorage.getItem('harbrook.token') ?? '';
}

const token = findToken();

/** A request that the server answered with an error; `status` is 0 when it did not answer. */
export class ApiError extends Error {
  constructor(status, message) {
    super(message);
    this.status = status;
  }
}

const PATIENCE = 15_000;

/**
 * Asks for `path` and fulfils with what `read` makes of the answer. `read` is given a function to call at every sign of
 * life; after `patience` milliseconds without one the server counts as gone, and so does a connection that breaks.
 * @param {string} path
 * @param {RequestInit} options
 */
async function ask(path, options, read, { patience = PATIENCE, signal } = /** @type {Limits} */ ({})) {
  const ended = new AbortController();
  const end = () => ended.abort();
  let timer;
  const isAlive = () => {
    clearTimeout(timer);
    if (patience !== Infinity) timer = setTimeout(end, patience);
  };
  signal?.addEventListener('abort', end);
  isAlive();
  try {
    const headers = { 'X-Harbrook-Token': token, ...options.headers };
    const response = await fetch(`/api/${path}`, { ...options, headers, signal: ended.signal });
    if (response.ok) return await read(response, isAlive);
    const answer = await response.json().catch(() => ({}));
    throw new ApiError(response.status, answer.error ?? `The server answered with status ${response.status}.`);
  } catch (error) {
    if (error instanceof ApiError) throw error;
    throw new ApiError(0, 'The Harbrook server does not answer.');
  } finally {
    clearTimeout(timer);
    signal?.removeEventListener('abort', end);
  }
}

const asJson = (response) => response.json();

/**
 * @template {keyof Answers} Path
 * @param {Path} path
 * @returns {Promise<Answers[Path]>}
 */
export const get = (path) => ask(path, {}, asJson);

/**
 * @template {keyof Bodies} Path
 * @param {Path} path
 * @param {Bodies[Path]} body
 * @param {Limits} [limits]
 */
export function post(path, body, limits) {
  const headers = { 'Content-Type': 'application/json', 'X-Harbrook': '1' };
  return ask(path, { method: 'POST', headers, body: JSON.stringify(body) }, asJson, limits);
}

/** Calls `onText` with each piece of a streamed answer; fulfilled at its end. `limits` are those of `ask`. */
export function stream(path, onText, limits) {
  const read = async (response, isAlive) => {
    const reader = response.body.getReader();
    const decoder = new TextDecoder();
    for (;;) {
      const { done, value } = await reader.read();
      if (done) return;
      isAlive();
      onText(decoder.decode(value, { stream: true }));
    }
  };
  return ask(path, {}, read, limits);
}
