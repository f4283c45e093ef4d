"""From exec to the real dashboard's first frame, and to the first with the projects in it: the shell with the bundled
dashboard and a home with 50 projects, against a bare viewer that opens the measured page of a server that runs already.
In turn; warm, and with --cold with the system's caches emptied before every start, as after a boot (root only)."""

import argparse
import os
import shutil
import statistics
from pathlib import Path

from programs import REPOSITORY, STAGE, Bench

PROJECTS = 50
EVENTS = ["server ready", "page requested", "first frame", "projects"]
# In the bundled page: says when its first frame has been drawn, and the first with every project in it.
REPORTER = f"""<script>
  const report = (event) => requestAnimationFrame(() => requestAnimationFrame(() => fetch(`/bench/${{event}}`)));
  report("first frame");
  new MutationObserver((_changes, observer) => {{
    if (document.querySelectorAll(".row, .card").length < {PROJECTS}) return;
    observer.disconnect();
    report("projects");
  }}).observe(document, {{ childList: true, subtree: true }});
</script>"""


class DashboardBench(Bench):
    """The shell with the bundled dashboard, whose server and page say when things happened."""

    def __init__(self):
        super().__init__()
        app = self.tree / "share" / "harbrook" / "app"
        shutil.rmtree(app)
        shutil.copytree(STAGE / "share" / "harbrook" / "app", app)
        (app / "server.js").rename(app / "dashboard.js")
        shutil.copy(REPOSITORY / "bench" / "dashboard_server.js", app / "server.js")
        page = app / "page" / "index.html"
        page.write_text(page.read_text().replace("<body>", f"<body>{REPORTER}", 1))
        self.home = self.folder / "home"
        for number in range(PROJECTS):
            project = self.home / "projects" / f"project-{number}"
            (project / "src").mkdir(parents=True)
            (project / "package.json").write_text(
                f'{{"name": "project-{number}", "version": "1.0.{number}", "scripts": {{"dev": "vite"}}}}'
            )

    def dashboard(self):
        return self.harbrook(self.home, DOCKER_HOST="unix:///nowhere/docker.sock")

    def viewer(self):
        return self.bare_viewer(self.folder / "home-viewer")


def empty_caches():
    os.sync()
    Path("/proc/sys/vm/drop_caches").write_text("3")


def measure(bench, runs, cold):
    viewer, dashboard = [], []
    for number in range(runs + 1):
        for start, event, times in [(bench.viewer, "painted", viewer), (bench.dashboard, "projects", dashboard)]:
            if cold:
                empty_caches()
            run = start()
            run.wait_for(event)
            events = run.events()
            run.end()
            # The first round fills the machine's caches, and leaves what the dashboard keeps for the next start.
            if number > 0:
                times.append(events)
    return viewer, dashboard


def report(title, viewer, dashboard):
    painted = statistics.median(run["painted"] for run in viewer)
    print(f"\n{title} ({len(viewer)} runs in turn, medians, ms)")
    print(f"  {'bare viewer, measured page':28} {painted:6.0f}")
    for event, aim in [("first frame", 1.15), ("projects", 1.35)]:
        times = [run[event] for run in dashboard]
        median = statistics.median(times)
        spread = f"({min(times):.0f} to {max(times):.0f})"
        print(f"  {'dashboard, ' + event:28} {median:6.0f}  {spread}  ratio {median / painted:.2f}, aim {aim}")
    line = [f"{one} {statistics.median(run[one] for run in dashboard):.0f}" for one in EVENTS]
    print(f"  dashboard: exec 0, {', '.join(line)}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--runs", type=int, default=9)
    parser.add_argument("--cold", action="store_true")
    options = parser.parse_args()
    bench = DashboardBench()
    try:
        report("The dashboard's start, warm", *measure(bench, options.runs, cold=False))
        if options.cold:
            report("The dashboard's start, caches emptied", *measure(bench, options.runs, cold=True))
    finally:
        bench.close()


if __name__ == "__main__":
    main()
