"""The bundled dashboard as the shell runs it: a home with projects to start, and the API as its page uses it."""

import json
import os
import re
import textwrap
import urllib.request
from pathlib import Path

from .processes import all_processes
from .waiting import PATIENCE, wait_until

SERVE_JS = """
const { createServer } = require('node:http');
const server = createServer((request, response) => response.end('a shop'));
server.listen(0, '127.0.0.1', () => console.log(`Open on ${server.address().port}`));
"""

# Says that it heard the polite signal, and goes on.
STUBBORN_JS = """
process.on('SIGTERM', () => console.log('Not yet.'));
require('node:http').createServer().listen(0, '127.0.0.1', () => console.log('Here to stay'));
"""

MANAGE_PY = """
from http.server import HTTPServer, SimpleHTTPRequestHandler
HTTPServer(("127.0.0.1", 0), SimpleHTTPRequestHandler).serve_forever()
"""

PROJECTS = {
    "shop/package.json": '{"name": "shop", "version": "2.4.1", "scripts": {"start": "node serve.js"}}',
    "shop/serve.js": SERVE_JS,
    "stubborn/package.json": '{"name": "stubborn", "scripts": {"start": "node stay.js"}}',
    "stubborn/stay.js": STUBBORN_JS,
    "atlas/pyproject.toml": '[project]\nname = "atlas"\nversion = "1.12"\n',
    "atlas/manage.py": MANAGE_PY,
    "weather/CMakeLists.txt": "project(weather VERSION 0.3)\n",
    "weather/Makefile": "forecast:\n\tpython3 -m http.server --bind 127.0.0.1 0\n",
}


def furnish(folder, files):
    """Writes the files, a map from relative path to text, below that folder."""
    for path, text in files.items():
        file = folder / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(textwrap.dedent(text).lstrip("\n"))


def processes_in(folder):
    """Living processes that work in that folder or below it, whoever started them."""
    found = []
    for one in all_processes():
        try:
            place = Path(os.readlink(f"/proc/{one.pid}/cwd"))
        except OSError:
            continue
        if one.alive and place.is_relative_to(folder):
            found.append(one)
    return found


def answer_at(port):
    """What a web server on that port answers, or None when none is there."""
    try:
        with urllib.request.urlopen(f"http://127.0.0.1:{port}/", timeout=5) as answer:
            return answer.read().decode()
    except OSError:
        return None  # Nobody there, or somebody who is just going.


class Dashboard:
    """The server that a running shell has started."""

    def __init__(self, shell):
        self.shell = shell
        self.folder = shell.home / "projects"

    # The server

    def server(self):
        """Its process, or None while it does not run."""
        script = str(self.shell.resources / "app" / "server.js")
        return next((one for one in self.shell.processes() if one.command.endswith(f" {script}")), None)

    def _key(self):
        """The token that the shell has given to it: no other program but the user's own can read it there."""
        server = wait_until("the server runs", self.server)
        environment = Path(f"/proc/{server.pid}/environ").read_bytes().split(b"\0")
        return dict(entry.split(b"=", 1) for entry in environment if b"=" in entry)[b"HARBROOK_TOKEN"].decode()

    def _port(self):
        announced = re.compile(r"^HARBROOK_PORT (\d+)$", re.MULTILINE)
        return wait_until("the port is announced", lambda: announced.findall(self.shell.log.read_text()))[-1]

    def get(self, path):
        request = urllib.request.Request(f"http://localhost:{self._port()}/{path}")
        request.add_header("X-Harbrook-Token", self._key())
        with urllib.request.urlopen(request, timeout=10) as answer:
            return json.load(answer)

    # Its projects

    def path(self, name):
        return self.folder / name

    def project(self, name):
        """What the page is told of that project."""
        return next(one for one in self.get("api/overview")["projects"] if one["name"] == name)

    def programs(self, name):
        """What runs in a project's folder, apart from the shells around it."""
        return [one for one in processes_in(self.path(name)) if one.name in ("node", "python3")]

    def wait_until_listening(self, name, within=PATIENCE):
        """The port that the project's program has opened."""
        return wait_until(f"{name} listens", lambda: self.project(name)["ports"], within)[0]

    def wait_until_ended(self, name, within=PATIENCE):
        wait_until(f"{name} has ended", lambda: not self.programs(name), within)
