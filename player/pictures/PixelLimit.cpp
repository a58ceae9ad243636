#include "player/pictures/PixelLimit.h"

#include <atomic>

namespace krl::player {

namespace {

std::atomic<int64_t> limit = kUsualPixelLimit;

}  // namespace

PixelLimit::PixelLimit(int64_t pixels) : before_(limit.exchange(pixels)) {}
PixelLimit::~PixelLimit() { limit = before_; }

int64_t PixelLimit::current() { return limit; }

}  // namespace krl::player
