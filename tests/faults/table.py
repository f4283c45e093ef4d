"""The table of what was counted."""

HEADINGS = (
    "fault",
    "rounds",
    "crashes",
    "left behind",
    "lines lost",
    "descriptors",
    "threads",
    "memory",
    "slowest answer",
    "holds",
)


def _cell(value, unit="", none=None):
    return none or "–" if value is None else f"{value}{unit}"


def row(name, counts):
    return (
        name,
        str(counts.rounds),
        str(counts.crashes),
        str(counts.left_behind),
        "no log" if counts.lines_lost is None and counts.no_log else _cell(counts.lines_lost),
        _cell(counts.descriptors, none=counts.unmeasured),
        _cell(counts.threads, none=counts.unmeasured),
        _cell(None if counts.memory is None else max(0, counts.memory), " KiB", none=counts.unmeasured),
        _cell(None if counts.slowest is None else round(counts.slowest * 1000), " ms"),
        "NO" if counts.failures else "yes" if counts.holds else "not tried",
    )


def table(rows, headings=HEADINGS):
    """A table in Markdown whose columns are also aligned for a terminal."""
    lines = [headings, *rows]
    widths = [max(len(line[column]) for line in lines) for column in range(len(headings))]

    def text(line):
        cells = [line[0].ljust(widths[0]), *(cell.rjust(width) for cell, width in zip(line[1:], widths[1:]))]
        return "| " + " | ".join(cells) + " |"

    rule = "|" + "|".join("-" * (width + 1) + ("-" if not column else ":") for column, width in enumerate(widths)) + "|"
    return "\n".join([text(headings), rule, *map(text, lines[1:])])
