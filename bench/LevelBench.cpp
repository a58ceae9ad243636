#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <string>

#include "Stage.h"
#include "host/MethodRegistry.h"

/// Prints the milliseconds of every method on one band, one per line, the best of several runs in wall-clock
/// time:
///
///     krlbench_level [PLUG_IN|-] [PART_OF_A_NAME]
///
/// The plug-in is that of this program, or one from a file. Run under several builds, it compares them.
namespace krl::bench {
namespace {

constexpr int kRuns = 3;

double bestOf(Stage& stage, const Method& method) {
    using Clock = std::chrono::steady_clock;
    const std::vector<player::Value> arguments = stage.examples(method);
    double best = 0;
    for (int run = 0; run < kRuns; ++run) {
        stage.restore();
        const Clock::time_point start = Clock::now();
        stage.call(method, arguments);
        const double time = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        best = run == 0 ? time : std::min(best, time);
    }
    return best;
}

void run(const std::string& plugIn, const std::string& part) {
    Stage stage(plugIn == "-" ? player::builtInPlugIn() : player::loadPlugIn(plugIn), {4000, 3000}, true);
    for (const Method* method : host::methods()) {
        if (method->managesTheEngine() || method->shortName().find(part) == std::string::npos) continue;
        std::printf("%s %.3f\n", method->shortName().c_str(), bestOf(stage, *method));
        std::fflush(stdout);
    }
}

}  // namespace
}  // namespace krl::bench

int main(int argc, char** argv) {
    try {
        krl::bench::run(argc > 1 ? argv[1] : "-", argc > 2 ? argv[2] : "");
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "krlbench_level: %s\n", error.what());
        return 1;
    }
}
