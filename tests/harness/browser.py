"""A default browser and mail program that only notes what it is asked to open."""

from .waiting import PATIENCE, wait_until

KINDS = ["http", "https", "mailto"]


class RecordingBrowser:
    """For all programs of one home."""

    def __init__(self, home):
        applications = home / ".local" / "share" / "applications"
        applications.mkdir(parents=True, exist_ok=True)
        self._notes = home / "opened.txt"
        self._surroundings = home / "opened-with.txt"
        program = home / "recording-browser"
        # One write each, so that two that run at once do not mix.
        program.write_text(
            f"#!/bin/sh\nenv >'{self._surroundings}'\nprintf '%s\\n' \"$1\" >>'{self._notes}'\n"
        )
        program.chmod(0o755)
        (applications / "recording-browser.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName=Recording Browser\nExec={program} %u\n"
        )
        (home / ".config").mkdir(exist_ok=True)
        defaults = "".join(f"x-scheme-handler/{kind}=recording-browser.desktop\n" for kind in KINDS)
        (home / ".config" / "mimeapps.list").write_text(f"[Default Applications]\n{defaults}")

    @property
    def opened(self):
        return self._notes.read_text().splitlines() if self._notes.exists() else []

    @property
    def environment(self):
        """What it was started with the last time."""
        lines = self._surroundings.read_text().splitlines()
        return dict(line.split("=", 1) for line in lines if "=" in line)

    def wait_for(self, address, within=PATIENCE):
        wait_until(f"the browser is asked for {address}", lambda: address in self.opened, within)
