"""The rows of docs/security.md and the tests that they name."""

import ast
import re
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
DOCUMENT = ROOT / "docs" / "security.md"


@dataclass(frozen=True)
class Promise:
    words: str
    tests: tuple  # "file::test"


def promises():
    """Every row of the document's tables."""
    found = []
    for line in DOCUMENT.read_text().splitlines():
        cells = [cell.strip() for cell in line.strip("|").split(" | ")]
        if line.startswith("| ") and cells[0] != "Promise":
            found.append(Promise(cells[0], tuple(_tests(cells[-1]))))
    return found


def _tests(cell):
    file = None
    for word in re.findall(r"`([^`]+)`", cell):
        if word.endswith((".py", ".cpp")):
            file = word
        else:
            yield f"{file}::{word}"


def source_of(test):
    """The file of a test, wherever below tests/ it is."""
    name = test.split("::")[0]
    found = [one for one in (ROOT / "tests").rglob(name) if "node_modules" not in one.parts]
    if len(found) != 1:
        raise SystemExit(f"{test}: {len(found)} files are called {name}")
    return found[0]


def exists(test):
    path, name = source_of(test), test.split("::")[1].split("[")[0]
    text = path.read_text()
    if path.suffix == ".py":
        return any(isinstance(node, ast.FunctionDef) and node.name == name for node in ast.parse(text).body)
    return re.search(rf"\bTEST(_F|_P)?\(\w+,\s*{re.escape(name)}\)", text) is not None
