#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <thread>

#include "Scene.h"
#include "catalogue/ExampleCall.h"
#include "host/MethodRegistry.h"
#include "player/host/Xtra.h"
#include "player/lingo/Interpreter.h"

/// Times every method of the registry with its example arguments, called through the embedded host.
/// Reports for the best run of each:
///
/// - `ms`, and `ns` per pixel;
/// - `GB/s` of picture data;
/// - `passes`: the time in units of one read and write of the whole picture, timed between the runs.
namespace krl::bench {
namespace {

using player::Value;

constexpr int kRuns = 4;

struct Size {
    int32_t width, height;
};

/// The plug-in in a host with the landscape loaded.
class Stage {
public:
    Stage(Size size, bool oneBand)
        : xtra_(host_, player::builtInPlugIn()),
          interpreter_(host_, xtra_, options_),
          clean_(landscape(size.width, size.height)),
          picture_(host_.heap.make<player::ImageObject>(clean_)),
          instance_(xtra_.newInstance()) {
        send("krlImageCreateLookupTables", Value::symbol(host_.symbols.symbol(oneBand ? "st" : "mt")));
        send("krlImageLoad", picture_);
        beside_.keepScratch(false);  // as in a plug-in
        beside_.load(bytes(), infoOf(clean_));
        beside_.setThreadCount(oneBand ? 1 : int32_t(std::thread::hardware_concurrency()));
    }
    ~Stage() {
        send("krlImageQuit", Value());
        picture_ = instance_ = Value();
        interpreter_.close();
    }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    std::vector<Value> examples(const Method& method) {
        const ExampleSetting setting{clean_.width, clean_.height, {}};
        std::vector<Value> values;
        for (const Argument& argument : method.arguments())
            values.push_back(argument.kind == ArgumentKind::SecondImage
                                 ? host_.heap.make<player::ImageObject>(clean_)
                                 : interpreter_.evaluateText("example", exampleText(argument, setting)));
        return values;
    }

    /// Milliseconds of a call on the original picture.
    double timed(const Method& method, const std::vector<Value>& arguments) {
        std::memcpy(bytes(), clean_.pixels.data(), size_t(pixelCount()) * sizeof(Pixel));
        return milliseconds(bands(), [&] { xtra_.call(instance_, host::selectorOf(method), arguments); });
    }
    double timedPass() {
        return milliseconds(bands(), [&] { mustRun(readAndWrite(beside_)); });
    }
    int64_t pixelCount() const { return int64_t(clean_.width) * clean_.height; }

private:
    void send(const char* name, const Value& argument) {
        xtra_.call(instance_, xtra_.selector(host_.symbols.identifier(name)), {&argument, 1});
    }
    int32_t bands() const { return beside_.getThreadCount(); }
    uint8_t* bytes() {
        return reinterpret_cast<uint8_t*>(picture_.as<player::ImageObject>()->bitmap.pixels.data());
    }

    player::SessionOptions options_;
    player::EmbeddedHost host_{uint64_t{4} << 30};
    player::Xtra xtra_;
    player::Interpreter interpreter_;
    player::Bitmap clean_;
    Value picture_, instance_;
    ImageEngine beside_;  ///< works on the same pixels, to time a pass
};

/// Only one stage exists at a time; benchmarks are registered in an order that rarely changes it.
Stage& stageFor(Size size, bool oneBand) {
    static std::unique_ptr<Stage> stage;
    static std::pair<int32_t, bool> kind;
    const std::pair wanted{size.width, oneBand};
    if (!stage || kind != wanted) {
        stage.reset();
        stage = std::make_unique<Stage>(size, oneBand);
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
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
