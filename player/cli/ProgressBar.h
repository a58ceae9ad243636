#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>

#include "player/cli/Commands.h"

namespace krl::player {

/// A progress line on a terminal; silent on any other stream.
class ProgressBar {
public:
    ProgressBar(const Terminal& terminal, size_t total, std::string unit);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Counts one more item as done; can be called from any thread.
    void step();

    /// The line for `done` of `total` items after `seconds`.
    static std::string lineFor(size_t done, size_t total, double seconds, const std::string& unit);

private:
    using Clock = std::chrono::steady_clock;
    const Terminal& terminal_;
    const size_t total_;
    const std::string unit_;
    const Clock::time_point start_ = Clock::now();
    Clock::time_point drawn_;
    size_t done_ = 0;
    std::mutex guard_;
};

}  // namespace krl::player
