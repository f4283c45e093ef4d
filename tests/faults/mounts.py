"""File systems that only one start of the program sees, in a mount namespace of its own."""

import os
import subprocess
from pathlib import Path

from matrix import NotTried

# An ordinary user may mount where they are root: in a user namespace of their own.
UNSHARE = ["unshare", "--mount"] if os.getuid() == 0 else ["unshare", "--mount", "--map-root-user"]


def through(script, *arguments):
    """What to start the program through, so that the shell script mounts something for it."""
    return [*UNSHARE, "sh", "-ec", f'{script}\nshift {len(arguments)}\nexec "$@"', "sh", *map(str, arguments)]


def small_disk(folder, size="64k", full=True):
    """The folder lies on a disk of that size, which is full from the start."""
    fill = 'head -c "$2" /dev/zero >"$1/ballast" || :\n' if full else ""
    return through(f'mkdir -p "$1"\nmount -t tmpfs -o size="$2" tmpfs "$1"\n{fill}', folder, size)


def read_only_disk(folder):
    return through('mkdir -p "$1"\nmount -t tmpfs -o ro tmpfs "$1"', folder)


def seen_by(pid, path):
    """A path as that process sees it."""
    return Path(f"/proc/{pid}/root{path}")


def require_mounts():
    """Mounting is not allowed everywhere: in many containers, for example."""
    tried = subprocess.run([*UNSHARE, "mount", "-t", "tmpfs", "tmpfs", "/mnt"], capture_output=True, text=True)
    if tried.returncode:
        raise NotTried(f"this system does not let the user mount: {tried.stderr.strip()}")
