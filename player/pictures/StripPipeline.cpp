#include "player/pictures/StripPipeline.h"

#include <algorithm>
#include <new>
#include <system_error>

#include "core/Faults.h"

namespace krl::player {

namespace {

/// Starts a thread if the system grants one and there is memory.
template <class Work>
void tryToStart(std::thread& thread, const Work& work) {
    if (!Faults::grant(faults().threads)) return;
    try {
        thread = std::thread(work);
    } catch (const std::system_error&) {
    } catch (const std::bad_alloc&) {
    }
}

}  // namespace

void StripPipeline::Queue::push(Bitmap& strip) {
    const std::lock_guard guard(mutex_);
    strips_[(first_ + count_++) % kStrips] = &strip;
    changed_.notify_one();
}

Bitmap* StripPipeline::Queue::pop() {
    std::unique_lock guard(mutex_);
    changed_.wait(guard, [&] { return count_ > 0 || isClosed_; });
    if (count_ == 0) return nullptr;
    Bitmap* const strip = strips_[first_];
    first_ = (first_ + 1) % kStrips;
    --count_;
    return strip;
}

void StripPipeline::Queue::close() {
    const std::lock_guard guard(mutex_);
    isClosed_ = true;
    changed_.notify_one();
}

StripPipeline::StripPipeline(int32_t width, int32_t height, const StripSteps& steps, const StripRules& rules)
    : steps_(steps), height_(height), strips_(rules.threads > 1 ? kStrips : 1) {
    const auto columns = static_cast<size_t>(width);
    stripRows_ = static_cast<int32_t>(std::clamp(rules.pixels / columns, size_t{1}, size_t(height)));
    for (Bitmap& strip : strips_) {
        strip.width = width;
        strip.pixels.resize(columns * static_cast<size_t>(stripRows_));
        free_.push(strip);
    }
    if (rules.threads > 1) tryToStart(reader_, [this] { fillAll(); });
    if (rules.threads > 2) tryToStart(writer_, [this] { emptyAll(); });
}

StripPipeline::~StripPipeline() {
    isOver_ = true;
    end();
}

bool StripPipeline::run() {
    while (Bitmap* strip = nextFilled()) {
        if (!steps_.change(*strip)) return false;
        pass(*strip);
    }
    end();
    if (readFailure_) std::rethrow_exception(readFailure_);
    return true;
}

Bitmap* StripPipeline::nextFilled() { return reader_.joinable() ? filled_.pop() : fill(); }

void StripPipeline::pass(Bitmap& strip) {
    if (writer_.joinable())
        changed_.push(strip);
    else
        empty(strip);
}

/// Reads the next strip; null at the end.
Bitmap* StripPipeline::fill() {
    if (nextRow_ == height_) return nullptr;
    Bitmap* const strip = free_.pop();
    if (!strip) return nullptr;
    strip->height = std::min(stripRows_, height_ - nextRow_);
    steps_.read(*strip);
    nextRow_ += strip->height;
    return strip;
}

void StripPipeline::empty(Bitmap& strip) {
    try {
        if (!writeFailure_ && !isOver_) steps_.write(strip);
    } catch (...) {
        writeFailure_ = std::current_exception();
    }
    free_.push(strip);
}

void StripPipeline::fillAll() noexcept {
    try {
        while (Bitmap* strip = isOver_ ? nullptr : fill()) filled_.push(*strip);
    } catch (...) {
        readFailure_ = std::current_exception();
    }
    filled_.close();
}

void StripPipeline::emptyAll() noexcept {
    while (Bitmap* strip = changed_.pop()) empty(*strip);
}

/// Lets the threads come to their end.
void StripPipeline::end() {
    free_.close();
    changed_.close();
    if (reader_.joinable()) reader_.join();
    if (writer_.joinable()) writer_.join();
}

}  // namespace krl::player
