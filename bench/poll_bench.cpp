// What one poll costs the main thread on Linux, from the decoded snapshot to the menu that the panel is
// given: for a snapshot like the last one, and for one in which a port has changed.

#include "platform/gtk/status/MenuLayout.h"
#include "status/StatusMenu.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace harbrook;

std::optional<State> snapshot(std::int64_t projects, std::int64_t firstPort) {
    State state;
    for (std::int64_t i = 0; i < projects; ++i) {
        State::Project project;
        project.name = "project-" + std::to_string(i);
        project.path = "/home/me/projects/" + project.name;
        project.running = true;
        project.ports = {firstPort, 5173};
        project.appRunning = i % 2 == 0;
        state.projects.push_back(std::move(project));
        firstPort = 3000;
    }
    return state;
}

void unchanged(benchmark::State& run) {
    gtk::MenuIds ids;
    const auto state = snapshot(run.range(0), 3000);
    const auto published = gtk::updatedLayout({}, statusMenu(state), ids).layout;
    for (auto iteration : run) {
        (void)iteration;
        bool isPublished = published.menu() == statusMenu(state);
        benchmark::DoNotOptimize(isPublished);
    }
}

void changed(benchmark::State& run) {
    gtk::MenuIds ids;
    auto published = gtk::updatedLayout({}, statusMenu(snapshot(run.range(0), 3000)), ids).layout;
    const auto first = snapshot(run.range(0), 4000);
    const auto second = snapshot(run.range(0), 4001);
    bool isSecond = false;
    for (auto iteration : run) {
        (void)iteration;
        isSecond = !isSecond;
        published = gtk::updatedLayout(published, statusMenu(isSecond ? second : first), ids).layout;
    }
}

BENCHMARK(unchanged)->Arg(10)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(changed)->Arg(10)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
