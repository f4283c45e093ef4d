"""Waiting for something that announces itself to nobody: a window, a file, a process that ends."""

import os
import time

# A test that waits in vain fails after this many seconds. Generous: a loaded machine is slow, and a
# wait that is met ends at once.
PATIENCE = float(os.environ.get("HARBROOK_PATIENCE", 20.0))


class NeverHappened(AssertionError):
    pass


def wait_until(what, predicate, within=PATIENCE):
    """Returns the first true answer of the predicate; `what` names it in the failure."""
    deadline = time.monotonic() + within
    pause = 0.005
    while True:
        answer = predicate()
        if answer:
            return answer
        if time.monotonic() >= deadline:
            raise NeverHappened(f"waited {within:g} s for: {what} (last answer: {answer!r})")
        time.sleep(pause)
        pause = min(pause * 1.5, 0.05)


def stays(what, predicate, during):
    """Fails as soon as the predicate is false within the given seconds."""
    deadline = time.monotonic() + during
    while time.monotonic() < deadline:
        assert predicate(), f"did not stay true for {during:g} s: {what}"
        time.sleep(0.02)
