"""Limits of the system, set for a program while it runs."""

import os
import resource
import uuid
from contextlib import contextmanager
from pathlib import Path

from matrix import NotTried

# Where the system counts processes and threads by groups, in its older and its newer layout.
GROUPS = (Path("/sys/fs/cgroup/pids"), Path("/sys/fs/cgroup"))


@contextmanager
def limited(pid, kind, limit):
    """Until the end of the block, the process has no more than that."""
    before = resource.prlimit(pid, kind)
    resource.prlimit(pid, kind, (limit, before[1]))
    try:
        yield
    finally:
        if os.path.exists(f"/proc/{pid}"):
            resource.prlimit(pid, kind, before)


def no_descriptors(pid):
    """Not one more file, pipe or connection."""
    taken = {int(entry) for entry in os.listdir(f"/proc/{pid}/fd")}
    free = next(number for number in range(len(taken) + 1) if number not in taken)
    return limited(pid, resource.RLIMIT_NOFILE, free)


@contextmanager
def no_processes(pid):
    """Not one more process or thread."""
    # The user's limit does not bind root.
    if os.getuid() != 0:
        with limited(pid, resource.RLIMIT_NPROC, 1):
            yield
        return
    with group_of_processes() as group:
        join(group, pid)
        (group / "pids.max").write_text("0")
        yield


@contextmanager
def group_of_processes():
    """A group for processes, with a limit of its own; at the end all are back where they were."""
    parent = next((one for one in GROUPS if (one / "cgroup.procs").exists()), None)
    if parent is None:
        raise NotTried("this system does not count processes by groups")
    group = parent / f"harbrook-{uuid.uuid4().hex}"
    try:
        group.mkdir()
        (group / "pids.max").write_text("max")
    except OSError as problem:
        raise NotTried(f"this system does not let the user limit processes: {problem}") from problem
    try:
        yield group
    finally:
        for pid in (group / "cgroup.procs").read_text().split():
            join(parent, int(pid))
        group.rmdir()


def join(group, pid):
    try:
        (group / "cgroup.procs").write_text(str(pid))
    except ProcessLookupError:
        pass  # it has ended
