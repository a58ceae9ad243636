#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "Stage.h"
#include "core/Scratch.h"
#include "host/MethodRegistry.h"

/// Times every method of the registry with its example arguments, called through the embedded host.
/// Reports for the best run of each:
///
/// - `ms`, and `ns` per pixel;
/// - `GB/s` of picture data;
/// - `passes`: the time in units of one read and write of the whole picture, timed between the runs.
///
/// Working memory stays at hand from call to call, as for programs that embed the engine; the plug-in itself
/// gives it back to its host.
namespace krl::bench {
namespace {

using player::Value;

constexpr int kRuns = 4;

/// Only one stage exists at a time; benchmarks are registered in an order that rarely changes it.
Stage& stageFor(Size size, bool oneBand) {
    static std::unique_ptr<Stage> stage;
    static std::pair<int32_t, bool> kind;
    const std::pair wanted{size.width, oneBand};
    if (!stage || kind != wanted) {
        stage.reset();
        stage = std::make_unique<Stage>(player::builtInPlugIn(), size, oneBand);
        kind = wanted;
    }
    return *stage;
}

void timeMethod(benchmark::State& state, const Method& method, Size size, bool oneBand) {
    Stage& stage = stageFor(size, oneBand);
    const std::vector<Value> arguments = stage.examples(method);
    double best = stage.timed(method, arguments), pass = stage.timedPass();
    for ([[maybe_unused]] auto step : state) {
        const double time = stage.timed(method, arguments);
        state.SetIterationTime(time / 1000);
        best = std::min(best, time);
        pass = std::min(pass, stage.timedPass());
    }
    const auto pixels = double(stage.pixelCount());
    state.counters["ms"] = best;
    state.counters["ns"] = best * 1e6 / pixels;
    state.counters["GB/s"] = pixels * sizeof(Pixel) / (best * 1e6);
    state.counters["passes"] = best / pass;
}

void registerAll() {
    for (const Size size : {Size{4000, 3000}, Size{1000, 750}})
        for (const bool oneBand : {true, false})
            for (const Method* method : host::methods()) {
                if (method->managesTheEngine()) continue;
                const std::string name = method->shortName() + '/' + std::to_string(size.width) + 'x' +
                                         std::to_string(size.height) + (oneBand ? "/one" : "/all");
                benchmark::RegisterBenchmark(
                    name.c_str(), [=](benchmark::State& state) { timeMethod(state, *method, size, oneBand); })
                    ->UseManualTime()
                    ->Unit(benchmark::kMillisecond)
                    ->Iterations(kRuns);
            }
}

}  // namespace
}  // namespace krl::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    krl::bench::registerAll();
    krl::ScratchAllowance kept;
    kept.set(size_t{1} << 30);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
