"""Files that a program leaves behind."""

import os
from pathlib import Path

# What the system's libraries keep of its fonts. They make it once, in whichever start they come to it.
SYSTEM_CACHES = {"fontconfig"}


def places(shell):
    """Where the program may write: home, temporary and run-time folders, each of them private here."""
    return [shell.home, Path(shell.environment["TMPDIR"]), Path(shell.environment["XDG_RUNTIME_DIR"])]


def temporary_folder(folder):
    """What to add to a shell's environment, so that it shares no temporary folder with anybody."""
    folder.mkdir(parents=True, exist_ok=True)
    return {"TMPDIR": str(folder)}


def files(shell):
    """Every file, folder and socket that there is now."""
    found = set()
    for place in places(shell):
        for folder, folders, names in os.walk(place):
            folders[:] = [name for name in folders if name not in SYSTEM_CACHES]
            found |= {os.path.join(folder, name) for name in folders + names}
    return found


def new_files(shell, before):
    """How many there are more than before, and some of them."""
    now = files(shell)
    more = max(0, len(now) - len(before))
    return more, sorted(now - before)[:10]
