"""The server's output through the shell into its log, against `cat` of the same stream into a file; and what keeping
the text costs beyond the text itself."""

import argparse
import os
import shutil
import statistics
import subprocess
import tempfile
import time
from pathlib import Path

from programs import STAGE, Desktop, end, wait_until

LINE = b"GET /api/state 200 in 1.8 ms, 12 projects, 3 running; nothing of note happened here today\n"


def resident(pid):
    for line in Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith("VmRSS:"):
            return int(line.split()[1]) * 1024
    raise RuntimeError("no VmRSS")


def through_cat(stream, folder):
    """Seconds that `cat` takes from a pipe into a file."""
    target = folder / "copy"
    started = time.monotonic()
    with subprocess.Popen(["cat", stream], stdout=subprocess.PIPE) as source, open(target, "wb") as file:
        subprocess.run(["cat"], stdin=source.stdout, stdout=file, check=True)
    elapsed = time.monotonic() - started
    target.unlink()
    return elapsed


def through_shell(desktop, stream, folder):
    """Seconds from the first byte to the last in the log, and bytes of memory that the shell gained."""
    folder = Path(tempfile.mkdtemp(dir=folder))
    tree = folder / "installed"
    shutil.copytree(STAGE, tree, symlinks=True)
    runtime = tree / "share" / "harbrook" / "runtime"
    runtime.mkdir(exist_ok=True)
    gate = folder / "gate"
    os.mkfifo(gate)
    node = runtime / "node"
    # Announces itself, waits at the gate, then prints the stream and stays.
    node.write_text(f"#!/bin/sh\necho HARBROOK_PORT 1\nread go < {gate}\ncat {stream}\nexec sleep 1000\n")
    node.chmod(0o755)
    home = folder / "home"
    home.mkdir()
    shell = subprocess.Popen(
        [tree / "bin" / "harbrook"],
        env=desktop.environment | {"HOME": str(home)},
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
    )
    log = home / ".harbrook" / "logs" / "server.log"
    try:
        wait_until("the server has announced itself", lambda: log.exists() and log.stat().st_size > 0)
        time.sleep(3)
        size = log.stat().st_size + stream.stat().st_size
        before = resident(shell.pid)
        started = time.monotonic()
        gate.write_text("go\n")
        while log.stat().st_size < size:
            time.sleep(0.002)
        elapsed = time.monotonic() - started
        return elapsed, resident(shell.pid) - before
    finally:
        end(shell)
        shutil.rmtree(folder)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--megabytes", type=int, default=512)
    parser.add_argument("--runs", type=int, default=5)
    arguments = parser.parse_args()
    folder = Path(tempfile.mkdtemp(prefix="hb-bench-"))
    desktop = Desktop()
    try:
        stream = folder / "stream"
        stream.write_bytes(LINE * (arguments.megabytes * 1_000_000 // len(LINE)))
        size = stream.stat().st_size
        shell, cat, growth = [], [], []
        for _ in range(arguments.runs):
            cat.append(size / through_cat(stream, folder) / 1e6)
            elapsed, gained = through_shell(desktop, stream, folder)
            shell.append(size / elapsed / 1e6)
            growth.append(gained / size)
        print(f"{arguments.runs} runs in turn of {size / 1e6:.0f} MB, medians")
        print(f"  cat into a file         {statistics.median(cat):7.0f} MB/s")
        print(f"  shell into its log      {statistics.median(shell):7.0f} MB/s   ratio {statistics.median(shell) / statistics.median(cat):.2f}")
        print(f"  memory gained by the shell, over the size of the text: {statistics.median(growth):.3f}")
    finally:
        desktop.close()
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main()
