"""A corner of the machine without its network ports, processes and services."""

import os
import subprocess
import sys

INSIDE = "HARBROOK_SHOTS_INSIDE"


def enter(*needed):
    """Starts this program over in namespaces of its own, where that is possible, and then never returns.

    What the views show of a machine is then only what was started for the pictures, its usual ports are
    free, and whatever was started ends with this program, however that ends. Of /tmp and /run only the
    folders `needed` are there.
    """
    if os.environ.get(INSIDE):
        return
    corner = ["bwrap", "--dev-bind", "/", "/", "--unshare-net", "--unshare-pid", "--die-with-parent"]
    corner += ["--proc", "/proc", "--tmpfs", "/tmp", "--tmpfs", "/run"]
    for folder in needed:
        corner += ["--bind", folder, folder]
    try:
        subprocess.run([*corner, "true"], check=True, capture_output=True)
    except (OSError, subprocess.CalledProcessError):
        print("No namespaces here: the pictures show the ports and services of this machine.", file=sys.stderr)
        return
    environment = os.environ | {INSIDE: "1"}
    os.execvpe(corner[0], [*corner, sys.executable, "-m", __package__, *sys.argv[1:]], environment)
