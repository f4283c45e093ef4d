"""Repeats the build's own commands, for one architecture and with other options."""

import json
import shlex
import subprocess
from pathlib import Path


class Compiler:
    def __init__(self, tree):
        entries = json.loads((tree / "compile_commands.json").read_text())
        self.commands = {entry["file"]: entry for entry in entries}

    def sources(self, suffix):
        return sorted(file for file in self.commands if file.endswith(suffix))

    def run(self, source, *options, instead=None, before=()):
        """Compiles `source`, or the file `instead` as if it were that one."""
        entry = self.commands[str(source)]
        words = [w for w in shlex.split(entry["command"]) if Path(w).name != "ccache"]
        if instead:
            words[words.index(str(source))] = str(instead)
        for flag, value in (("-arch", "x86_64"), ("-o", None), ("-MF", None), ("-MT", None)):
            for place in [i for i, w in enumerate(words[:-1]) if w == flag and value in (None, words[i + 1])]:
                words[place:place + 2] = ["", ""]
        words = [w for w in words if w not in ("", "-MD", "-c")]
        return subprocess.run(
            [words[0], *before, *words[1:], *options], capture_output=True, text=True, cwd=entry["directory"])
