"""The pages that the scripted server shows."""

# Runs scripts that the test sends, and reports their values. Ordinary requests to the server that
# served the page, so it works without any help from the shell.
AGENT = """
(() => {
  const source = new EventSource('/agent/scripts');
  source.onmessage = async message => {
    const {id, script} = JSON.parse(message.data);
    const answer = {id};
    try { answer.value = (await (0, eval)(script)) ?? null; } catch (error) { answer.error = String(error); }
    await fetch('/agent/result', {method: 'POST', body: JSON.stringify(answer)});
  };
})();
"""

# What the very first script of a page finds.
FIRST = """
window.first = {
  token: window.__FC_TOKEN ?? null,
  native: document.documentElement.classList.contains('native'),
};
"""


def page(body="<h1>Dashboard</h1>", head="", first=FIRST, agent=True):
    scripts = f"<script>{first}</script>" + (f"<script>{AGENT}</script>" if agent else "")
    return (
        f"<!doctype html><html><head>{scripts}<meta charset=utf-8><title>Dashboard</title>{head}</head>"
        f"<body>{body}</body></html>"
    )
