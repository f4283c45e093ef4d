"""Holds the linked program against the published tables and against what it is expected to use.

  - every selector it sends is one of the table of facts or a method of its own;
  - every method it defines is a callback of a protocol it adopts, overrides one of its superclass, or is
    listed below as its own; a misspelt optional callback is none of these;
  - every callback in callbacks.tsv is there;
  - every action that a menu sends up the responder chain, and every key of key-value coding, is published;
  - both architectures are alike, and as expected-program.txt says (--update writes it anew).

usage: verify_program.py PUBLISHED_DIRECTORY PROGRAM [--update | --one-architecture]
"""

import difflib
import re
import sys
from pathlib import Path

import facts as fact_table
import program as mach_o
import published as published_tables

HERE = Path(__file__).resolve().parent.parent
ROOT = HERE.parent.parent
EXPECTED = HERE / "expected-program.txt"
# What our classes have that nobody else asks for.
OWN_METHODS = {"-initWithDelegate:", "-initWithHandler:", "-coreRespondsToSelector:"}
COMPILER_MADE = {"-.cxx_construct", "-.cxx_destruct"}


def callbacks():
    return [line.split("\t") for line in (HERE / "callbacks.tsv").read_text().splitlines()[1:]]


def check_selectors(program, facts):
    known = {selector for fact in facts for selector in fact_table.selectors_of(fact)}
    # The root protocol's, declared in sysroot/objc/objc.h.
    known |= set(re.findall(r"^- \([^)]*\)(\w+:?)", (HERE / "sysroot/objc/objc.h").read_text(), re.M))
    known |= {method[1:] for own in program.classes.values() for method in own.methods}
    # What the compiler itself sends for literals, subscripts and loops.
    known |= {"countByEnumeratingWithState:objects:count:"}
    return [f"sends {s}, which nothing declares" for s in program.selectors if s not in known]


def check_methods(program, published):
    problems = []
    for name, own in program.classes.items():
        sources = [own.superclass, *own.protocols]
        for method in own.methods:
            if method in OWN_METHODS | COMPILER_MADE:
                continue
            key, count = method[0] + published_tables.joined(method[1:]), method.count(":")
            found = [m for s in sources for m in published.members(s, key)]
            found += published.members("NSObjectProtocol", key)
            if not any(len(m.parameters or []) == count for m in found):
                problems.append(f"{method[0]}[{name} {method[1:]}] is no callback of {', '.join(sources)}")
    return problems


def check_callbacks(program, published):
    problems = []
    for class_name, selector, owner in callbacks():
        own = program.classes.get(class_name)
        if own is None or f"-{selector}" not in own.methods:
            problems.append(f"{class_name} has no {selector}")
        elif owner not in (own.superclass, *own.protocols):
            problems.append(f"{class_name} does not adopt {owner}")
        elif not published.members(owner, "-" + published_tables.joined(selector)):
            problems.append(f"{owner} has no {selector}")
    return problems


def check_core_names(published, root=ROOT):
    """The core names actions and keys as text; the platform looks them up when the program runs."""
    problems = []
    own = set(re.findall(r'Action\{"([^"]+)"', (root / "app/Actions.cpp").read_text()))
    menus = "".join((root / f).read_text() for f in ("app/MainMenu.cpp", "status/StatusMenu.cpp"))
    actions = set(re.findall(r'"(\w+:)"', menus)) - own
    if not actions:
        problems.append("found no action that goes up the responder chain")
    names = published.every_member_name()
    problems += [f"no class has the action {a}" for a in sorted(actions) if published_tables.joined(a) not in names]
    keys = set()
    for folder in ("app", "server", "window", "status", "shots"):
        for file in (root / folder).glob("*.cpp"):
            keys |= set(re.findall(r'setValueForKey\([^,]+, "(\w+)"', file.read_text()))
    if not keys:
        problems.append("found no key of key-value coding")
    return problems + [f"no class has the property {key}" for key in sorted(keys) if key not in names]


def check_expected(path, update):
    descriptions = {a: mach_o.describe(mach_o.read(path, a)) for a in mach_o.ARCHITECTURES}
    first, second = descriptions.values()
    if first != second:
        return ["the architectures differ:", *difflib.unified_diff(
            first.splitlines(), second.splitlines(), *mach_o.ARCHITECTURES, lineterm="", n=0)]
    if update:
        EXPECTED.write_text(first)
    expected = EXPECTED.read_text() if EXPECTED.exists() else ""
    difference = list(difflib.unified_diff(
        expected.splitlines(), first.splitlines(), "expected-program.txt", "the program", lineterm="", n=0))
    return difference and [*difference, "If that is meant: tests/macos/run --update"]


def main():
    directory, path, *options = sys.argv[1:]
    published, facts = published_tables.load(directory), fact_table.load()
    program = mach_o.read(path, "arm64")
    problems = check_selectors(program, facts) + check_methods(program, published)
    problems += check_callbacks(program, published) + check_core_names(published)
    if "--one-architecture" not in options:
        problems += check_expected(path, "--update" in options)
    print("\n".join(problems) if problems else
          f"{len(program.selectors)} selectors, {len(program.imported_classes)} classes and "
          f"{len(callbacks())} callbacks are as published")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
