#pragma once

#include <chrono>

namespace krl::player {

/// Adds the milliseconds of its life to a sum.
class Stopwatch {
public:
    explicit Stopwatch(double& milliseconds) : milliseconds_(milliseconds) {}
    ~Stopwatch() {
        const std::chrono::duration<double, std::milli> life = std::chrono::steady_clock::now() - start_;
        milliseconds_ += life.count();
    }
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;

private:
    double& milliseconds_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace krl::player
