#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "player/pictures/Picture.h"

namespace krl::player {

/// What happens to each strip of a picture, from top to bottom. Strips are as wide as the picture.
struct StripSteps {
    std::function<void(Bitmap& strip)> read;
    std::function<bool(Bitmap& strip)> change;  ///< false ends the work
    std::function<void(const Bitmap& strip)> write;
};

/// How many pixels a strip has, and on how many threads the steps run, the caller's included.
struct StripRules {
    size_t pixels = size_t{1} << 19;  ///< or one row
    unsigned threads = 1;
};

/// Moves a few strips of memory round: one thread reads into them, the caller's changes them, and another one
/// writes them. With fewer threads, or where the system grants none, the caller takes over the steps.
class StripPipeline {
public:
    /// Strips in memory: one for each step, and one to make up for steps that take uneven times.
    static constexpr size_t kStrips = 4;

    StripPipeline(int32_t width, int32_t height, const StripSteps& steps, const StripRules& rules);
    /// Ends the threads.
    ~StripPipeline();
    StripPipeline(const StripPipeline&) = delete;
    StripPipeline& operator=(const StripPipeline&) = delete;

    /// Returns whether all strips came to their end. Rethrows what reading or changing has thrown. If writing
    /// fails, the rest of the picture is read nevertheless: a damaged picture is the failure to report.
    bool run();
    /// What writing has thrown, after `run`.
    std::exception_ptr writeFailure() const { return writeFailure_; }

private:
    /// Strips on their way from one thread to another.
    class Queue {
    public:
        void push(Bitmap& strip);
        /// Waits for a strip; null once the queue is closed and empty.
        Bitmap* pop();
        void close();

    private:
        std::mutex mutex_;
        std::condition_variable changed_;
        std::array<Bitmap*, kStrips> strips_{};
        size_t first_ = 0, count_ = 0;
        bool isClosed_ = false;
    };

    Bitmap* nextFilled();
    void pass(Bitmap& strip);
    Bitmap* fill();
    void empty(Bitmap& strip);
    void fillAll() noexcept;
    void emptyAll() noexcept;
    void end();

    const StripSteps& steps_;
    const int32_t height_;
    int32_t stripRows_, nextRow_ = 0;
    std::vector<Bitmap> strips_;
    Queue free_, filled_, changed_;
    std::atomic<bool> isOver_ = false;
    std::exception_ptr readFailure_, writeFailure_;
    std::thread reader_, writer_;
};

}  // namespace krl::player
