"""From exec to the page's second animation frame: the shell, which also starts its server, against viewers that
open the same page of a server that runs already. In turn, so that whatever else the machine does hits all alike."""

import argparse
import statistics
import tempfile
from pathlib import Path

from programs import Bench


def measure(bench, runs, fresh_home):
    """Milliseconds of each event, for each program and run; apart from them, those of the first round."""
    times = {name: [] for name in bench.programs()}
    first = {}
    for number in range(runs + 1):
        for name, start in bench.programs().items():
            folder = name.replace(" ", "-")
            home = Path(tempfile.mkdtemp(dir=bench.folder)) if fresh_home else bench.folder / f"home-{folder}"
            run = start(home)
            run.wait_until_painted()
            events = run.events()
            run.end()
            # The first round fills the machine's caches, and a warm home.
            if number > 0:
                times[name].append(events)
            else:
                first[name] = events["painted"]
    return times, first


def report(title, times, first):
    print(f"\n{title} ({len(times['harbrook'])} runs in turn, medians, ms)")
    medians = {name: statistics.median(one["painted"] for one in runs) for name, runs in times.items()}
    for name, runs in times.items():
        painted = [one["painted"] for one in runs]
        ratio = medians["harbrook"] / medians[name]
        print(f"  {name:15} {medians[name]:7.0f}  ({min(painted):.0f} to {max(painted):.0f})  harbrook / it = {ratio:.2f}")
    events = ["server started", "server ready", "page requested", "painted"]
    line = [f"{one} {statistics.median(run[one] for run in times['harbrook']):.0f}" for one in events]
    print(f"  harbrook: exec 0, {', '.join(line)}")
    cold = [f"{name} {painted:.0f}" for name, painted in first.items()]
    print(f"  the first round, apart, with what caches the machine had then: {', '.join(cold)}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--runs", type=int, default=11)
    runs = parser.parse_args().runs
    bench = Bench()
    try:
        bench.describe()
        report("Start, warm home", *measure(bench, runs, fresh_home=False))
        report("Start, empty home", *measure(bench, runs, fresh_home=True))
    finally:
        bench.close()


if __name__ == "__main__":
    main()
