"""Memory of the process tree (PSS, server aside) and idle processor time, shell against bare viewer: in turn, each by
itself, so that neither has the other's share of what both map."""

import argparse
import statistics
import time

from programs import Bench, cpu_seconds, proportional_set_size, tree_without_server


def measure(run, rest, seconds):
    """MiB and percent of a core, once the program has rested."""
    run.wait_until_painted()
    time.sleep(rest)
    pids = tree_without_server(run.process.pid)
    before = cpu_seconds(pids)
    time.sleep(seconds)
    pids = tree_without_server(run.process.pid)
    percent = 100 * (cpu_seconds(pids) - before) / seconds
    memory = sum(map(proportional_set_size, pids))
    run.end()
    return memory, percent


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--rest", type=float, default=5, help="seconds that a program has to come to rest")
    parser.add_argument("--idle", type=float, default=20, help="seconds to watch an idle program for")
    given = parser.parse_args()
    bench = Bench()
    try:
        starts = {"harbrook": bench.harbrook, "bare viewer": bench.bare_viewer}
        found = {name: [] for name in starts}
        for _ in range(given.runs):
            for name, start in starts.items():
                run = start(bench.folder / f"home-{name.replace(' ', '-')}")
                found[name].append(measure(run, given.rest, given.idle))
        print(f"{given.runs} runs in turn, medians; idle for {given.idle:g} s")
        medians = {name: [statistics.median(figure) for figure in zip(*runs)] for name, runs in found.items()}
        for name, (memory, percent) in medians.items():
            all_memory = [one[0] for one in found[name]]
            span = f"({min(all_memory):.1f} to {max(all_memory):.1f})"
            print(f"{name:12} {memory:7.1f} MiB PSS {span:16}  {percent:5.2f} % of a core")
        more = [one - other for one, other in zip(medians["harbrook"], medians["bare viewer"])]
        print(f"difference   {more[0]:+7.1f} MiB {'':20}  {more[1]:+5.2f} %")
    finally:
        bench.close()


if __name__ == "__main__":
    main()
