"""Files that a program leaves behind."""

import os
from pathlib import Path


def places(shell):
    """Where the program may write: home, temporary and run-time folders, shared memory."""
    return [shell.home, Path(shell.environment["TMPDIR"]), Path(shell.environment["XDG_RUNTIME_DIR"]), Path("/dev/shm")]


def temporary_folder(folder):
    """What to add to a shell's environment, so that it shares no temporary folder with anybody."""
    folder.mkdir(parents=True, exist_ok=True)
    return {"TMPDIR": str(folder)}


def files(shell):
    """Every file, folder and socket of this user's that there is now."""
    found = set()
    for place in places(shell):
        for folder, folders, names in os.walk(place):
            found |= {os.path.join(folder, name) for name in folders + names}
    return found


def new_files(shell, before):
    """How many there are more than before, and some of them."""
    now = files(shell)
    more = max(0, len(now) - len(before))
    return more, sorted(now - before)[:10]
