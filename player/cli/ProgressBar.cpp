#include "player/cli/ProgressBar.h"

#include <cmath>
#include <cstdio>
#include <ostream>

#include "player/cli/PlainOutput.h"

namespace krl::player {

namespace {

constexpr size_t kBarCells = 30;
constexpr std::chrono::milliseconds kBetweenDraws{80};
constexpr const char* kBackToStart = "\r\x1b[K";

std::string minutes(double seconds) {
    const long whole = std::lround(seconds);
    char text[32];
    std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
    return text;
}

}  // namespace

ProgressBar::ProgressBar(const Terminal& terminal, size_t total, std::string unit)
    : terminal_(terminal), total_(total), unit_(std::move(unit)) {}

ProgressBar::~ProgressBar() {
    if (drawn_ != Clock::time_point()) unfiltered(terminal_.err) << kBackToStart << std::flush;
}

void ProgressBar::step() {
    const std::lock_guard lock(guard_);
    ++done_;
    const Clock::time_point now = Clock::now();
    if (!terminal_.live || now - drawn_ < kBetweenDraws) return;
    drawn_ = now;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    unfiltered(terminal_.err) << kBackToStart << lineFor(done_, total_, seconds, unit_) << std::flush;
}

std::string ProgressBar::lineFor(size_t done, size_t total, double seconds, const std::string& unit) {
    const size_t filled = total == 0 ? kBarCells : kBarCells * done / total;
    std::string bar;
    for (size_t i = 0; i < kBarCells; ++i) bar += i < filled ? "█" : "░";
    const double rate = seconds > 0 ? double(done) / seconds : 0;
    char numbers[96];
    std::snprintf(numbers, sizeof numbers, "  %zu of %zu %s", done, total, unit.c_str());
    std::string line = bar + numbers;
    if (rate <= 0) return line;
    std::snprintf(numbers, sizeof numbers, ", %.1f/s, %s left", rate,
                  minutes(double(total - done) / rate).c_str());
    return line + numbers;
}

}  // namespace krl::player
