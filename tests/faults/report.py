"""The table in a document: rows that were tried anew replace those of the same fault."""

import datetime
import os
import platform
from pathlib import Path

import table

BEGIN = "<!-- The table below is written by script/faults --write. -->"
END = "<!-- End of the table. -->"

HEADINGS = (*table.HEADINGS, "date")


def write(document, rows, order):
    """rows: the new ones by the name of the fault. order: the names of all faults there are; others go away."""
    text = document.read_text()
    before, rest = text.split(BEGIN)
    between, after = rest.split(END)
    today = datetime.date.today().isoformat()
    kept = _parse(between) | {name: (*row, today) for name, row in rows.items()}
    shown = [kept[name] for name in order if name in kept]
    document.write_text(f"{before}{BEGIN}\n\n{machine()}\n\n{table.table(shown, HEADINGS)}\n\n{END}{after}")


def _parse(text):
    """The rows of a written table by the name of the fault."""
    lines = [line for line in text.splitlines() if line.startswith("| ")]
    rows = [tuple(cell.strip() for cell in line.strip("|").split("|")) for line in lines[1:]]
    return {row[0]: row for row in rows}


def machine():
    return f"Counted on {_processor()}, {_memory()} GB of memory, Linux {platform.release()}, {_system()}."


def _processor():
    information = Path("/proc/cpuinfo").read_text().splitlines()
    model = next((line.split(":")[1].strip() for line in information if line.startswith("model name")), "unknown")
    return f"{os.cpu_count()} processors ({model})"


def _memory():
    return round(os.sysconf("SC_PHYS_PAGES") * os.sysconf("SC_PAGE_SIZE") / 1e9)


def _system():
    return platform.freedesktop_os_release().get("PRETTY_NAME", "an unknown system")
