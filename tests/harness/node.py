"""The Node.js that script/setup found good: the system's, or that of a version manager, which only PATH knows of."""

import shutil
from pathlib import Path

USUAL_PATH = "/usr/local/bin:/usr/bin:/bin"


def _own_folder():
    node = shutil.which("node")
    return None if node is None or str(Path(node).parent) in USUAL_PATH.split(":") else str(Path(node).parent)


# Where it is, unless every program finds it anyway.
FOLDER = _own_folder()

# What programs of a test are looked for in.
PATH = f"{FOLDER}:{USUAL_PATH}" if FOLDER else USUAL_PATH


def tell_login_shells(home):
    """What a version manager writes into the profile of its user."""
    if FOLDER:
        (home / ".profile").write_text(f'PATH="{FOLDER}:$PATH"; export PATH\n')
