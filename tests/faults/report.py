"""The table in a document: rows that were tried anew replace those of the same fault. Each keeps what it was counted on."""

import datetime
import os
import platform
import string
import subprocess
from pathlib import Path

import table

BEGIN = "<!-- The table below is written by script/faults --write. -->"
END = "<!-- End of the table. -->"

HEADINGS = (*table.HEADINGS, "date", "commit", "machine")

HERE = Path(__file__).resolve().parent


def write(document, rows, order):
    """rows: the new ones by the name of the fault. order: the names of all faults there are; others go away."""
    text = document.read_text()
    before, rest = text.split(BEGIN)
    between, after = rest.split(END)
    machines, kept = _parse(between)
    today = datetime.date.today().isoformat()
    for name, row in rows.items():
        kept[name] = (*row, today, commit(), _letter(machines, machine()))
    shown = [kept[name] for name in order if name in kept]
    used = {row[-1] for row in shown}
    legend = "\n".join(f"- Machine {letter}: {what}" for letter, what in machines.items() if letter in used)
    document.write_text(f"{before}{BEGIN}\n\n{legend}\n\n{table.table(shown, HEADINGS)}\n\n{END}{after}")


def _letter(machines, what):
    """The letter that stands for that machine, a new one if need be."""
    for letter, known in machines.items():
        if known == what:
            return letter
    letter = next(one for one in string.ascii_uppercase if one not in machines)
    machines[letter] = what
    return letter


def _parse(text):
    """The machines of a written table by their letters, and its rows by the name of the fault."""
    lines = text.splitlines()
    legend = [line.removeprefix("- Machine ").split(": ", 1) for line in lines if line.startswith("- Machine ")]
    rows = [tuple(cell.strip() for cell in line.strip("|").split("|")) for line in lines if line.startswith("| ")]
    return dict(legend), {row[0]: row for row in rows[1:]}


def commit():
    """The commit that is tried; with a + when the sources have been changed since."""
    changed = _git("status", "--porcelain", "--untracked-files=no", "--", ".", ":!docs")
    return _git("rev-parse", "--short=9", "HEAD") + ("+" if changed else "")


def _git(*arguments):
    root = HERE.parents[1]
    return subprocess.run(["git", "-C", root, *arguments], capture_output=True, text=True, check=True).stdout.strip()


def machine():
    return f"{_processor()}, {_memory()} GB of memory, Linux {platform.release()}, {_system()}"


def _processor():
    information = Path("/proc/cpuinfo").read_text().splitlines()
    model = next((line.split(":")[1].strip() for line in information if line.startswith("model name")), "unknown")
    return f"{os.cpu_count()} processors ({model})"


def _memory():
    return round(os.sysconf("SC_PHYS_PAGES") * os.sysconf("SC_PAGE_SIZE") / 1e9)


def _system():
    return platform.freedesktop_os_release().get("PRETTY_NAME", "an unknown system")
