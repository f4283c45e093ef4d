"""The command line of script/shots."""

import argparse
import os
import signal
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
ON_MACOS = sys.platform == "darwin"
PROGRAM = "Harbrook.app/Contents/MacOS/Harbrook" if ON_MACOS else "harbrook"


def arguments():
    parser = argparse.ArgumentParser(prog="script/shots", description="Takes pictures of the dashboard's views.")
    parser.add_argument("list", nargs="?", type=Path, default=ROOT / "docs" / "pictures.json", help="what to take")
    parser.add_argument("--into", type=Path, help="folder for the pictures (pictures/ beside the list)")
    parser.add_argument("--only", action="append", default=[], metavar="NAME", help="this picture; can be repeated")
    parser.add_argument("--one", type=Path, metavar="FILE", help="write only the first picture, and there")
    parser.add_argument("--program", type=Path, default=ROOT / "build" / "release" / PROGRAM)
    parser.add_argument("--argument", action="append", default=[], help="passed to the program; can be repeated")
    parser.add_argument("--virtual", action="store_true", help="use a virtual display even if there is a real one")
    chosen = parser.parse_args()
    chosen.list = chosen.list.resolve()
    chosen.one = chosen.one and chosen.one.resolve()
    chosen.into = chosen.one.parent if chosen.one else (chosen.into or chosen.list.parent / "pictures").resolve()
    chosen.program = chosen.program.resolve()
    chosen.display = None if chosen.virtual else os.environ.get("DISPLAY")
    return chosen


def say(line):
    print(line, file=sys.stderr, flush=True)


def take_all(chosen, plan):
    """Whether every picture shows a page that was ready."""
    from .session import Failed, Session, desktop

    if chosen.one:
        plan = plan.only_first()
    well = True
    for appearance, scale, pictures in plan.sessions():
        try:
            with desktop(scale, chosen.display) as place:
                session = Session(place, chosen.program, chosen.argument, plan, appearance, scale)
                try:
                    for picture in pictures:
                        outcome = session.show(picture.step)
                        name = chosen.one.name if chosen.one else picture.file_name(appearance, scale)
                        session.take(chosen.into / name)
                        remark = "" if outcome.was_ready else "  TIMED OUT: the page was not ready"
                        say(f"{name:32}{outcome.seconds:5.1f} s{remark}")
                        well = well and outcome.was_ready
                finally:
                    session.close()
        except Failed as problem:
            say(f"FAILED: {appearance}, scale {scale}: {problem}")
            well = False
    return well


def main():
    from . import isolation, plan

    chosen = arguments()
    try:
        listed = plan.read(chosen.list, chosen.only)
    except plan.BadList as problem:
        say(f"script/shots: {problem}")
        return 2
    chosen.into.mkdir(parents=True, exist_ok=True)
    if not chosen.display and not ON_MACOS:
        folders = {ROOT, chosen.list.parent, chosen.into, chosen.program.parent}
        isolation.enter(*sorted(map(str, folders)))
    interrupts = []

    def interrupt(number, frame):
        # Ends by way of every clean-up.
        interrupts.append(number)
        raise KeyboardInterrupt

    for number in (signal.SIGTERM, signal.SIGINT):
        signal.signal(number, interrupt)
    try:
        well = take_all(chosen, listed)
    except BaseException:
        if not interrupts:
            raise
    # Whatever became of it on its way.
    if interrupts:
        return 130
    return 0 if well else 1


sys.exit(main())
