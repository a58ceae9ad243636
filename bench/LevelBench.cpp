#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

#include "Stage.h"
#include "host/MethodRegistry.h"

/// Prints the milliseconds of every method on one band, one per line, the best of several runs in wall-clock
/// time:
///
///     krlbench_level [PLUG_IN|-] [NAME_OR_PART_OF_ONE [WIDTHxHEIGHT [RUNS]]]
///
/// The plug-in is that of this program, or one from a file; the picture has 4000 by 3000 pixels unless others
/// are given. Run under several builds, it compares them.
namespace krl::bench {
namespace {

double bestOf(Stage& stage, const Method& method, int runs) {
    using Clock = std::chrono::steady_clock;
    const std::vector<player::Value> arguments = stage.examples(method);
    double best = 0;
    for (int run = 0; run < runs; ++run) {
        stage.restore();
        const Clock::time_point start = Clock::now();
        stage.call(method, arguments);
        const double time = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        best = run == 0 ? time : std::min(best, time);
    }
    return best;
}

Size sizeIn(const std::string& word) {
    Size size{};
    if (std::sscanf(word.c_str(), "%dx%d", &size.width, &size.height) != 2)
        throw std::invalid_argument("expected a size such as 1000x750, not " + word);
    return size;
}

void run(const std::string& plugIn, const std::string& part, Size size, int runs) {
    Stage stage(plugIn == "-" ? player::builtInPlugIn() : player::loadPlugIn(plugIn), size, true);
    const auto isNamed = [&](const Method* method) { return method->shortName() == part; };
    const bool whole = std::any_of(host::methods().begin(), host::methods().end(), isNamed);
    for (const Method* method : host::methods()) {
        if (method->managesTheEngine()) continue;
        if (whole ? !isNamed(method) : method->shortName().find(part) == std::string::npos) continue;
        std::printf("%s %.3f\n", method->shortName().c_str(), bestOf(stage, *method, runs));
        std::fflush(stdout);
    }
}

}  // namespace
}  // namespace krl::bench

int main(int argc, char** argv) {
    try {
        const auto word = [&](int place, const char* otherwise) {
            return argc > place ? argv[place] : otherwise;
        };
        krl::bench::run(word(1, "-"), word(2, ""), krl::bench::sizeIn(word(3, "4000x3000")),
                        std::stoi(word(4, "3")));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "krlbench_level: %s\n", error.what());
        return 1;
    }
}
