// The title-bar buttons during a live resize: how long a step takes on the recording platform, and how many
// views are moved; none is while everything is in its place.

#include "app/AppDelegate.h"
#include "platform/recording/Platform.h"

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {

using namespace harbrook;

std::int64_t viewChanges(recording::Platform& platform) {
    return std::ranges::count_if(
        platform.log().take(), [](const auto& line) { return line.find("setFrame") != std::string::npos; });
}

/// `layOut` is called before each placement, to put views out of place or leave them.
template <typename LayOut>
void place(benchmark::State& run, LayOut layOut) {
    const auto platform = std::make_shared<recording::Platform>();
    const auto delegate = std::make_shared<AppDelegate>(platform, std::make_shared<Globals>(*platform));
    delegate->buildWindow();
    auto& window = *platform->window();
    (void)platform->log().take();
    std::int64_t changes = 0;
    for (auto iteration : run) {
        (void)iteration;
        layOut(window);
        delegate->placeTrafficLights();
        run.PauseTiming();
        changes += viewChanges(*platform);
        run.ResumeTiming();
    }
    run.counters["view_changes"] = static_cast<double>(changes) / static_cast<double>(run.iterations());
    platform->shutDown();
}

void everythingInPlace(benchmark::State& run) {
    place(run, [](recording::Window&) {});
}

void resizeStep(benchmark::State& run) {
    double height = 700;
    place(run, [&height](recording::Window& window) {
        height = height < 1000 ? height + 1 : 700;
        window.simulateResize({1320, height});
    });
}

BENCHMARK(everythingInPlace)->Unit(benchmark::kMicrosecond);
BENCHMARK(resizeStep)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
