#!/usr/bin/python3
"""Breaks each promise of docs/security.md in a copy of the sources, links the program or its tests with that, and
demands that the test named for the promise fails, and for that reason. What `script/test build` has built is left as
it is.

usage: run.py [--jobs N] [WORD...]     only the breaks whose title has one of the words
       run.py --check                  builds and runs nothing: says what no longer fits documents, tests or sources
"""

import argparse
import json
import os
import re
import shlex
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from concurrent.futures import ThreadPoolExecutor

from breaks import BREAKS
from promises import ROOT, exists, promises, source_of

BUILD = ROOT / "build" / "release"
STAGE = ROOT / "build" / "stage"
FOLDER = ROOT / "build" / "planted"

# A test of the broken program often waits for what never comes; a sound one waits for far less than this.
PATIENCE = "12"


class NotNoticed(Exception):
    pass


def run(command, **options):
    return subprocess.run(command, capture_output=True, text=True, errors="replace", **options)


def check(command, **options):
    done = run(command, **options)
    if done.returncode:
        raise NotNoticed(f"{' '.join(map(str, command[:4]))}... failed:\n{done.stdout}{done.stderr}")
    return done.stdout


class Planter:
    def __init__(self):
        commands = json.loads((BUILD / "compile_commands.json").read_text())
        self.compilations = {command["file"]: shlex.split(command["command"]) for command in commands}
        self.links = {}

    def link_command(self, target):
        """How the build links that target, without what it does afterwards."""
        if target not in self.links:
            last = check(["ninja", "-C", BUILD, "-t", "commands", target]).splitlines()[-1]
            self.links[target] = shlex.split(last.removeprefix(": && ").split(" && ")[0])
        return self.links[target]

    def plant(self, planted, folder):
        """Compiles the changed sources; gives the object files."""
        objects = []
        for file, text in planted.planted_texts(ROOT).items():
            changed = folder / file
            changed.parent.mkdir(parents=True, exist_ok=True)
            changed.write_text(text)
            command = list(self.compilations[str(ROOT / file)])
            command[command.index(str(ROOT / file))] = str(changed)
            command[command.index("-o") + 1] = str(changed.with_suffix(".o"))
            check([*command, "-Wno-error"], cwd=BUILD)
            objects.append(str(changed.with_suffix(".o")))
        return objects

    def link(self, target, objects, program):
        """An object that is named before an archive takes the place of the archive's own."""
        command = list(self.link_command(target))
        command[command.index("-o") + 1] = str(program)
        command[1:1] = objects
        program.parent.mkdir(parents=True, exist_ok=True)
        check(command, cwd=BUILD)
        return program

    def failures(self, planted):
        """What the tests say on the broken program: their names, each with its failure or none."""
        folder = FOLDER / re.sub(r"\W+", "-", planted.title)
        shutil.rmtree(folder, ignore_errors=True)
        objects = self.plant(planted, folder)
        found = {}
        for path in dict.fromkeys(map(source_of, planted.fails)):
            tests = [test for test in planted.fails if source_of(test) == path]
            report = folder / "report.xml"
            report.unlink(missing_ok=True)
            names = [test.split("::", 1)[1] for test in tests]
            ran = (self.run_python if path.suffix == ".py" else self.run_compiled)(path, names, objects, folder, report)
            cases = outcomes(report, ran)
            for test, name in zip(tests, names):
                found[test] = {case: told for case, told in cases.items() if name in (case, of_test(case))}
        shutil.rmtree(folder)
        return found

    def run_python(self, path, names, objects, folder, report):
        stage = folder / "stage"
        if not stage.exists():
            shutil.copytree(STAGE, stage, copy_function=os.link)
            (stage / "bin" / "harbrook").unlink()
            self.link("harbrook", objects, stage / "bin" / "harbrook")
        return run(
            ["/usr/bin/python3", "-m", "pytest", "-q", "--tb=short", "-p", "no:cacheprovider", "-o", "addopts="]
            + [f"--basetemp={folder / 'tmp'}", f"--junitxml={report}", *(f"{path}::{name}" for name in names)],
            env=os.environ | {"HARBROOK_STAGE": str(stage), "HARBROOK_PATIENCE": PATIENCE},
            cwd=ROOT,
        )

    def run_compiled(self, path, names, objects, folder, report):
        target = "_".join([*path.relative_to(ROOT / "tests").parts[:-1], "tests"])
        program = folder / target
        if not program.exists():
            self.link(target, objects, program)
        chosen = ":".join(f"*.{name}:*.{name}/*" for name in names)
        return run([program, f"--gtest_filter={chosen}", f"--gtest_output=xml:{report}"], cwd=folder)


def of_test(case):
    """The name of the test without the parameter, which follows in brackets or behind a slash."""
    return re.split(r"[\[/]", case)[0]


def outcomes(report, ran):
    """Each case that ran, with what it failed for, or None."""
    if not report.exists():
        raise NotNoticed(f"the tests told nothing:\n{ran.stdout[-3000:]}{ran.stderr[-3000:]}")
    found = {}
    for case in ElementTree.parse(report).getroot().iter("testcase"):
        failures = [(one.get("message") or "") + (one.text or "") for one in case.iter("failure")]
        found[case.get("name")] = "\n".join(failures) if failures else None
    return found


def examine(planter, planted):
    """What is wrong with that break, or None."""
    try:
        for test, cases in planter.failures(planted).items():
            if not cases:
                return f"{test} does not run"
            for case, failure in cases.items():
                if failure is None:
                    return f"{test}: {case} PASSES"
                if not re.search(planted.fails[test], failure):
                    return f"{test}: {case} fails for another reason:\n{failure[-3000:]}"
    except (LookupError, NotNoticed) as trouble:
        return str(trouble)
    return None


def gaps():
    """Promises that nothing breaks, tests that were never seen to fail, and tests that do not exist."""
    for promise in promises():
        broken = {test.split("[")[0] for one in BREAKS if promise.words.startswith(one.promise) for test in one.fails}
        yield from (f"there is no {test}" for test in promise.tests if not exists(test))
        yield from (f"never seen to fail: {test}" for test in sorted(set(promise.tests) - broken))
        yield from (f"{test} is not named beside: {promise.words}" for test in sorted(broken - set(promise.tests)))
        if not broken:
            yield f"nothing breaks: {promise.words}"
    for one in BREAKS:
        try:
            one.planted_texts(ROOT)
        except LookupError as trouble:
            yield f"{one.title}: {trouble}"
        if sum(promise.words.startswith(one.promise) for promise in promises()) != 1:
            yield f"{one.title}: no single promise begins with {one.promise!r}"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    # More than processors: most of the time a test waits for what never comes.
    parser.add_argument("--jobs", type=int, default=os.cpu_count() + 1)
    parser.add_argument("--check", action="store_true")
    parser.add_argument("words", nargs="*", metavar="WORD")
    options = parser.parse_args()
    chosen = [one for one in BREAKS if not options.words or any(word in one.title for word in options.words)]
    missing = list(gaps())
    for gap in missing:
        print(f"  {gap}")
    if options.check:
        return 1 if missing else 0
    planter = Planter()
    troubles = 0
    with ThreadPoolExecutor(options.jobs) as workers:
        for planted, trouble in zip(chosen, workers.map(lambda one: examine(planter, one), chosen)):
            print(f"  {planted.title}: {'NOT NOTICED: ' + trouble if trouble else 'noticed'}", flush=True)
            troubles += bool(trouble)
    print(f"{troubles + len(missing)} failed, {len(chosen) - troubles} passed")
    return 1 if troubles or missing else 0


if __name__ == "__main__":
    sys.exit(main())
