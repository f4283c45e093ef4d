"""A Debian system with nothing on it, in a folder, to be thrown away."""

import os
import shutil
import subprocess
from pathlib import Path

SUITE = "bookworm"
USER = "developer"
USER_NUMBER = 1000

# What apt and dpkg keep for themselves, and where the folders of a test's desktop are bound.
BOOKKEEPING = ("var/lib/apt/", "var/lib/dpkg/", "var/cache/", "var/log/", "tmp/.X11-unix", "tmp/hb-desktop-")


def cache():
    return Path(os.environ.get("XDG_CACHE_HOME", Path.home() / ".cache")) / "harbrook" / "bare"


def pristine():
    """The system as debootstrap makes it, made once and kept."""
    tree = cache() / SUITE
    if not tree.exists():
        unfinished = cache() / f"{SUITE}.unfinished"
        shutil.rmtree(unfinished, ignore_errors=True)
        unfinished.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["debootstrap", "--variant=minbase", SUITE, unfinished], check=True)
        unfinished.rename(tree)
    return tree


class BareRoot:
    """A copy of it. Its programs see nothing of this machine but the network and the folders that are bound."""

    def __init__(self, folder):
        self.tree = folder / "root"
        # Links, devices and owners as they are.
        subprocess.run(["cp", "--archive", "--reflink=auto", pristine(), self.tree], check=True)
        shutil.copy("/etc/resolv.conf", self.tree / "etc" / "resolv.conf")
        # What every installer writes and debootstrap does not.
        (self.tree / "etc" / "hosts").write_text("127.0.0.1 localhost\n::1 localhost\n")
        self.run("useradd", "--create-home", "--shell", "/bin/bash", "--uid", str(USER_NUMBER), USER)
        self.home = self.tree / "home" / USER

    def command(self, *words, user=False, bound=(), environment=None):
        """The words as a command line of this machine's that runs them in the tree, as root or as the user."""
        line = ["bwrap", "--bind", self.tree, "/", "--dev", "/dev", "--proc", "/proc"]
        for folder in bound:
            line += ["--bind", folder, folder]
        line += ["--unshare-pid", "--unshare-ipc", "--die-with-parent", "--cap-add", "ALL", "--chdir", "/"]
        line += ["--clearenv"]
        variables = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "HOME": f"/home/{USER}" if user else "/root"}
        for name, value in (variables | (environment or {})).items():
            line += ["--setenv", name, value]
        if user:
            line += ["setpriv", f"--reuid={USER}", f"--regid={USER}", "--init-groups"]
        return [*line, *words]

    def run(self, *words, **where):
        """Runs to the end and gives what it printed."""
        ran = subprocess.run(self.command(*words, **where), stdin=subprocess.DEVNULL, capture_output=True, text=True)
        assert ran.returncode == 0, f"{words} ended with {ran.returncode}\n{ran.stdout}{ran.stderr}"
        return ran.stdout

    def apt(self, *words):
        return self.run("apt-get", "--yes", *words, environment={"DEBIAN_FRONTEND": "noninteractive"})

    def give(self, file, name):
        """Puts a file of this machine's into the user's home."""
        target = self.home / name
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(file, target)
        self.run("chown", "--recursive", f"{USER}:{USER}", f"/home/{USER}")
        return f"/home/{USER}/{name}"

    def remove(self):
        shutil.rmtree(self.tree)

    def files(self):
        """Every path outside the home directories and the bookkeeping."""
        found = set()
        for folder, folders, names in os.walk(self.tree):
            if Path(folder) == self.tree:
                folders[:] = [name for name in folders if name not in ("home", "dev", "proc", "sys")]
            found |= {str((Path(folder) / name).relative_to(self.tree)) for name in [*folders, *names]}
        return {path for path in found if not path.startswith(BOOKKEEPING)}
