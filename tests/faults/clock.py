"""A clock of one program's own, in the hands of the test."""

import shutil
import subprocess
from pathlib import Path

# Below the folder that bears the name of the machine's kind.
LIBRARY = next(map(str, Path("/usr/lib").glob("*/faketime/libfaketimeMT.so.1")), "libfaketimeMT.so.1")


class Clock:
    """Takes the place of the clock that the program of a shell reads, and of no other's.

    So the library that does it is named in the program's own list of libraries, in a copy of the program; in the
    environment, it would get into the engine's processes and the server, too.

    monotonic: whether the clock that delays are measured by goes along. Setting the system's clock leaves that one
    alone.
    rate: how many times as fast as the real one it is from the beginning.
    """

    def __init__(self, shell, monotonic, rate=1):
        self._file = shell.folder / "clock"
        self.set(rate=rate)
        # Read anew each time.
        settings = {"FAKETIME_TIMESTAMP_FILE": str(self._file), "FAKETIME_NO_CACHE": "1"}
        if not monotonic:
            settings["FAKETIME_DONT_FAKE_MONOTONIC"] = "1"
        shell.environment |= settings
        self._put_into(shell.executable)

    @staticmethod
    def _put_into(program):
        copy = program.with_name("copy")
        shutil.copy2(program, copy)
        subprocess.run(["patchelf", "--add-needed", LIBRARY, copy], check=True)
        copy.rename(program)

    def set(self, offset=0, rate=1):
        """That many seconds ahead of the real clock, and so many times as fast.

        At a new rate the clock leaps to where it would be had it been so fast from the beginning.
        """
        new = self._file.with_name("new-clock")
        new.write_text(f"{offset:+} x{rate}\n")
        new.rename(self._file)

    @staticmethod
    def clear(pid):
        """Removes what the library leaves in shared memory when its program is killed."""
        for left in Path("/dev/shm").glob(f"*faketime_*_{pid}"):
            left.unlink(missing_ok=True)
