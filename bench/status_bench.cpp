// How long a snapshot takes from its text to a menu, how much it allocates, and how both grow.

#include "bench/AllocationCount.h"
#include "status/State.h"
#include "status/StatusMenu.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

std::string snapshot(std::int64_t projects) {
    std::string json = R"({"projects":[)";
    for (std::int64_t i = 0; i < projects; ++i) {
        const auto number = std::to_string(i);
        if (i > 0) json += ',';
        json.append(R"({"name":"project-)").append(number);
        json.append(R"(","path":"/home/me/projects/project-)").append(number);
        json.append(R"(","running":true,"ports":[)").append(std::to_string(3000 + i % 1000));
        json.append(R"(,5173],"hasCommand":true,"appRunning":)").append(i % 2 == 0 ? "true}" : "null}");
    }
    return json + R"(],"stats":{"running":1,"postgres":2,"redis":3,"containers":4}})";
}

/// Adds allocations per iteration, and nanoseconds per project, to the figures.
template <typename Work>
void measure(benchmark::State& run, Work work) {
    const auto before = harbrook::allocationCount();
    for (auto iteration : run) {
        (void)iteration;
        work();
    }
    run.counters["allocations"] =
        static_cast<double>(harbrook::allocationCount() - before) / static_cast<double>(run.iterations());
    run.counters["per_project"] = benchmark::Counter(
        static_cast<double>(run.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void decode(benchmark::State& run) {
    const auto json = snapshot(run.range(0));
    measure(run, [&json] { benchmark::DoNotOptimize(harbrook::decodeState(json)); });
}

void buildMenu(benchmark::State& run) {
    const auto state = harbrook::decodeState(snapshot(run.range(0)));
    measure(run, [&state] { benchmark::DoNotOptimize(harbrook::statusMenu(state)); });
}

BENCHMARK(decode)->Arg(10)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(buildMenu)->Arg(10)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
