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

async function send(path, options) {
  let response;
  try {
    response = await fetch(`/api/${path}`, { ...options, headers: { 'X-Harbrook-Token': token, ...options.headers } });
  } catch (error) {
    if (error.name === 'AbortError') throw error;
    throw new ApiError(0, 'The Harbrook server does not answer.');
  }
  if (response.ok) return response;
  const answer = await response.json().catch(() => ({}));
  throw new ApiError(response.status, answer.error ?? `The server answered with status ${response.status}.`);
}

export async function get(path) {
  return (await send(path, {})).json();
}

export async function post(path, body) {
  const headers = { 'Content-Type': 'application/json', 'X-Harbrook': '1' };
  return (await send(path, { method: 'POST', headers, body: JSON.stringify(body) })).json();
}

/** Calls `onText` with each piece of a streamed answer; fulfilled at its end. */
export async function stream(path, onText, signal) {
  const response = await send(path, { signal });
  const reader = response.body.getReader();
  const decoder = new TextDecoder();
  for (;;) {
    const { done, value } = await reader.read();
    if (done) return;
    onText(decoder.decode(value, { stream: true }));
  }
}
