/** Fulfilled with what `look()` finds as soon as that is true; asks again after each of `events`' turns. */
export async function eventually(look, { within = 10_000, what = 'the condition' } = {}) {
  const end = Date.now() + within;
  for (;;) {
    const found = await look();
    if (found) return found;
    if (Date.now() > end) throw new Error(`Waited in vain for ${what}`);
    await new Promise((resolve) => setTimeout(resolve, 25));
  }
}

/** Follows the server's stream of changes until the overview meets `condition`; fulfilled with that overview. */
export async function stateOf({ address, headers }, condition, within = 10_000) {
  const ended = AbortSignal.timeout(within);
  const response = await fetch(`${address}/api/events`, { headers, signal: ended });
  const reader = response.body.getReader();
  try {
    for (;;) {
      const { done } = await reader.read();
      if (done) throw new Error('The dashboard ended the stream');
      const overview = await (await fetch(`${address}/api/overview`, { headers, signal: ended })).json();
      if (condition(overview)) return overview;
    }
  } finally {
    await reader.cancel().catch(() => {});
  }
}
