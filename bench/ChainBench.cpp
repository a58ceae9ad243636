#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Scene.h"
#include "krlimage.h"

/// Times calls that treat every pixel alone through the C interface, in place and into another picture, and
/// chains of them beside their calls one by one. Runs alternate; tables have the least processor time of one
/// thread in milliseconds.
namespace krl::bench {
namespace {

constexpr int32_t kWidth = 4000, kHeight = 3000;
constexpr int kRuns = 9;

struct Free {
    void operator()(krl_engine* engine) const { krl_engine_free(engine); }
    void operator()(krl_look* look) const { krl_look_free(look); }
};
using Engine = std::unique_ptr<krl_engine, Free>;
using Look = std::unique_ptr<krl_look, Free>;

void mustSucceed(krl_code code) {
    if (code != KRL_OK) mustRun(kStatusRefused);
}

krl_picture pictureOver(player::Bitmap& bitmap, int32_t order = KRL_BGRA) {
    return {sizeof(krl_picture), bitmap.pixels.data(), bitmap.width, bitmap.height, bitmap.width * 4, order};
}

Look lookOf(const std::vector<std::string>& calls, const krl_picture& other) {
    Look look(krl_look_new());
    for (const std::string& call : calls) mustSucceed(krl_look_add_call(look.get(), call.c_str(), nullptr));
    mustSucceed(krl_look_set_picture(look.get(), "other", &other));
    return look;
}

using Job = std::function<void()>;

/// The least time of each job in alternating runs, the first of which warms up.
std::vector<double> leastTimes(const std::vector<Job>& jobs) {
    std::vector<double> least(jobs.size(), 1e9);
    for (int run = 0; run <= kRuns; ++run)
        for (size_t i = 0; i < jobs.size(); ++i) {
            const double taken = milliseconds(1, jobs[i]);
            if (run > 0) least[i] = std::min(least[i], taken);
        }
    return least;
}

void printRow(const std::string& work, const std::vector<double>& numbers) {
    std::printf("| %s |", work.c_str());
    for (const double number : numbers) std::printf(number < 3 ? " %.2f |" : " %.1f |", number);
    std::printf("\n");
    std::fflush(stdout);
}

/// What all rows work on.
struct Table {
    Engine engine{krl_engine_new(1)};
    player::Bitmap from = landscape(kWidth, kHeight), to = landscape(kWidth, kHeight),
                   other = landscape(kWidth, kHeight);

    Table() {
        for (Pixel& pixel : other.pixels) pixel.alpha = 128;
    }

    void printCall(const std::string& call) {
        const krl_picture source = pictureOver(from), target = pictureOver(to), second = pictureOver(other);
        const krl_picture redFirst = pictureOver(from, KRL_RGBA), targetRedFirst = pictureOver(to, KRL_RGBA);
        const Look look = lookOf({call}, second);
        const auto apply = [&](const krl_picture& in, const krl_picture& out) {
            return [&] { mustSucceed(krl_look_apply_into(engine.get(), look.get(), &in, &out, nullptr)); };
        };
        printRow(call, leastTimes({apply(target, target),
                                   [&] {
                                       std::memcpy(target.pixels, source.pixels, to.pixels.size() * 4);
                                       apply(target, target)();
                                   },
                                   apply(source, target), apply(targetRedFirst, targetRedFirst),
                                   apply(redFirst, targetRedFirst)}));
    }

    void printChain(const std::vector<std::string>& calls) {
        const krl_picture target = pictureOver(to), second = pictureOver(other);
        std::vector<Look> looks;
        for (const std::string& call : calls) looks.push_back(lookOf({call}, second));
        looks.push_back(lookOf(calls, second));
        std::vector<Job> jobs;
        for (const Look& look : looks)
            jobs.push_back([&] { mustSucceed(krl_look_apply(engine.get(), look.get(), &target, nullptr)); });
        const std::vector<double> times = leastTimes(jobs);
        double sum = 0, longest = 0;
        std::string work;
        for (size_t i = 0; i < calls.size(); ++i) {
            sum += times[i];
            longest = std::max(longest, times[i]);
            work += (i > 0 ? ", " : "") + calls[i];
        }
        printRow(work, {sum, longest, times.back(), times.back() / longest, times.back() / sum});
    }
};

void run() {
    Table table;
    std::printf(
        "| call | in place | copied and in place | into another | RGBA in place | RGBA into another |\n"
        "|---|---|---|---|---|---|\n");
    for (const char* call :
         {"invert", "brightness(40)", "contrast(1.4)", "desaturate", "sepia", "hueShift(40)",
          "composite(image(\"other\"), #normal)", "composite(image(\"other\"), #multiply)"})
        table.printCall(call);
    std::printf(
        "\n| chain | one by one | the longest | together | by the longest | by one by one |\n"
        "|---|---|---|---|---|---|\n");
    table.printChain({"brightness(20)", "contrast(1.2)", "gamma(1.2)", "levels", "exposure", "invert"});
    table.printChain({"brightness(20)", "contrast(1.2)", "gamma(1.1)", "colourTemperature(4200.0)",
                      "colourBalance", "saturation"});
    table.printChain({"brightness(20)", "contrast(1.2)", "colourBalance", "sepia", "desaturate", "invert"});
    table.printChain({"hueShift(20)", "saturation"});
    table.printChain({"contrast(1.2)", "composite(image(\"other\"), #screen)", "sepia"});
}

}  // namespace
}  // namespace krl::bench

int main() { krl::bench::run(); }
