"""The list of pictures."""

# The Python that comes with macOS knows no `X | None` while it runs.
from __future__ import annotations

import json
from dataclasses import dataclass, replace
from pathlib import Path
from urllib.parse import quote

APPEARANCES = ("light", "dark")


class BadList(Exception):
    pass


@dataclass(frozen=True)
class Step:
    """A view to show: its hash, or the folder of a project below the home; and what to click there."""

    view: str
    project: str = ""
    click: str = ""

    def hash(self, home):
        return f"#/p/{quote(str(home / self.project), safe='')}" if self.project else self.view

    def __str__(self):
        shown = self.project or self.view
        return f"{shown}, {self.click}" if self.click else shown


@dataclass(frozen=True)
class Picture:
    name: str
    step: Step
    appearances: tuple = APPEARANCES
    scales: tuple = (1,)

    def file_name(self, appearance, scale):
        return f"{self.name}-{appearance}{'' if scale == 1 else f'@{scale}x'}.png"


@dataclass(frozen=True)
class Plan:
    """home: what the throw-away home is filled with, or None; services: commands that run in it, each of which
    writes a line when it is ready; first: steps before the pictures."""

    home: Path | None
    services: tuple
    first: tuple
    pictures: tuple

    def only_first(self):
        """A plan for a single file."""
        first = self.pictures[0]
        single = replace(first, appearances=first.appearances[:1], scales=first.scales[:1])
        return replace(self, pictures=(single,))

    def sessions(self):
        """One for each appearance and scale that occurs, with the pictures that it takes."""
        for scale in sorted({scale for picture in self.pictures for scale in picture.scales}):
            for appearance in APPEARANCES:
                taken = [one for one in self.pictures if scale in one.scales and appearance in one.appearances]
                if taken:
                    yield appearance, scale, taken


def _step(entry):
    view, project = entry.pop("view", None), entry.pop("project", None)
    if (view is None) == (project is None):
        raise BadList('each entry has either a "view" or a "project"')
    return Step(view or "", project or "", entry.pop("click", ""))


def _picture(entry):
    step = _step(entry)
    if not entry.get("name"):
        raise BadList('a picture has no "name"')
    choices = {name: tuple(entry[name]) for name in ("appearances", "scales") if name in entry}
    unknown = set(entry) - {"name", "appearances", "scales"}
    if unknown or set(choices.get("appearances", ())) - set(APPEARANCES):
        raise BadList(f"{entry['name']}: not understood: {', '.join(sorted(unknown)) or choices['appearances']}")
    return Picture(entry["name"], step, **choices)


def read(path, only=()):
    """Raises BadList; `only` are the names of the pictures wanted, all when there are none."""
    try:
        listed = json.loads(path.read_text())
        pictures = tuple(_picture(dict(entry)) for entry in listed["pictures"])
        if not pictures:
            raise BadList("no pictures")
        unknown = set(only) - {picture.name for picture in pictures}
        if unknown:
            raise BadList(f"no picture is called {', '.join(sorted(unknown))}")
        return Plan(
            path.parent / listed["home"] if "home" in listed else None,
            tuple(listed.get("services", ())),
            tuple(_step(dict(entry)) for entry in listed.get("first", ())),
            tuple(picture for picture in pictures if not only or picture.name in only),
        )
    except BadList as problem:
        raise BadList(f"{path}: {problem}") from problem
    except (OSError, ValueError, KeyError, TypeError, AttributeError) as problem:
        raise BadList(f"{path}: {type(problem).__name__}: {problem}") from problem
