"""A page with a header to drag by and fields to type into, which notes what happens to it."""

from .page import page
from .server import Plan

HEADER_HEIGHT = 52

_HEAD = """
<style>
  body { margin: 0; font: 16px sans-serif; }
  header { height: 52px; user-select: none; }
  textarea { position: absolute; left: 200px; top: 200px; width: 400px; height: 120px; }
</style>
"""

_BODY = """
<header></header>
<button id=toggleSide onclick="happened.push('sidebar')">Sidebar</button>
<textarea id=text></textarea>
<script>
  const happened = [];
  const post = message => webkit.messageHandlers.fc.postMessage(message);
  const header = document.querySelector('header');
  header.addEventListener('mousedown', event => {
    happened.push('press');
    if (event.button === 0) post('drag');
  });
  header.addEventListener('click', () => happened.push('click'));
  header.addEventListener('dblclick', () => post('zoom'));
  window.onFolderPicked = (path, target) => happened.push(['folder', path, target]);
</script>
"""

TEXT_FIELD = (400, 260)


def input_page():
    return page(body=_BODY, head=_HEAD)


def input_plan(**answers):
    """A server with that page."""
    return Plan(answers={"/": {"body": input_page()}, **answers})
