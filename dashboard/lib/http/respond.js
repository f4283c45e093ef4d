export const BODY_LIMIT = 64 * 1024;

/** An outcome that the client is told: an HTTP status and a sentence that may be shown to the user. */
export class HttpError extends Error {
  constructor(status, message) {
    super(message);
    this.status = status;
  }
}

/** Answers with `value`, or with bytes that are JSON already. */
export function sendJson(response, value, status = 200) {
  const body = Buffer.isBuffer(value) ? value : Buffer.from(JSON.stringify(value));
  response.writeHead(status, {
    'Content-Type': 'application/json; charset=utf-8',
    'Content-Length': body.length,
    'Cache-Control': 'no-store',
  });
  response.end(body);
}

/** Reads a request's JSON object. Throws HttpError for another media type, too long a body, or anything else in it. */
export async function readJson(request) {
  const mediaType = (request.headers['content-type'] ?? '').split(';')[0].trim().toLowerCase();
  if (mediaType !== 'application/json') throw new HttpError(415, 'The body must be application/json.');
  if (Number(request.headers['content-length'] ?? 0) > BODY_LIMIT) throw new HttpError(413, 'The body is too long.');

  const chunks = [];
  let length = 0;
  for await (const chunk of request) {
    length += chunk.length;
    if (length > BODY_LIMIT) throw new HttpError(413, 'The body is too long.');
    chunks.push(chunk);
  }
  let value;
  try {
    value = JSON.parse(new TextDecoder('utf-8', { fatal: true }).decode(Buffer.concat(chunks)));
  } catch {
    throw new HttpError(400, 'The body is not valid JSON.');
  }
  if (value === null || typeof value !== 'object' || Array.isArray(value)) {
    throw new HttpError(400, 'The body must be a JSON object.');
  }
  return value;
}
