"""Memory of the process tree (PSS, server aside) and idle processor time, shell against bare viewer."""

import argparse
import time

from programs import Bench, cpu_seconds, proportional_set_size, tree_without_server


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--idle", type=int, default=60, help="seconds to watch the idle programs for")
    seconds = parser.parse_args().idle
    bench = Bench()
    try:
        runs = {
            "harbrook": bench.harbrook(bench.folder / "home-shell"),
            "bare viewer": bench.bare_viewer(bench.folder / "home-viewer"),
        }
        for run in runs.values():
            run.wait_until_painted()
        time.sleep(5)
        # Measured over the same seconds, so that both see the same machine.
        before = {name: cpu_seconds(tree_without_server(run.process.pid)) for name, run in runs.items()}
        time.sleep(seconds)
        percent, memory = {}, {}
        for name, run in runs.items():
            pids = tree_without_server(run.process.pid)
            percent[name] = 100 * (cpu_seconds(pids) - before[name]) / seconds
            memory[name] = sum(map(proportional_set_size, pids))
        for name in runs:
            print(f"{name:12} {memory[name]:7.1f} MiB PSS   {percent[name]:5.2f} % of a core, idle for {seconds} s")
        print(
            f"difference   {memory['harbrook'] - memory['bare viewer']:+7.1f} MiB       "
            f"{percent['harbrook'] - percent['bare viewer']:+5.2f} %"
        )
        for run in runs.values():
            run.end()
    finally:
        bench.close()


if __name__ == "__main__":
    main()
