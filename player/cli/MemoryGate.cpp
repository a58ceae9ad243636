#include "player/cli/MemoryGate.h"

#include <algorithm>

namespace krl::player {

namespace {

/// Copies of 4 bytes a pixel that exist at the same time: the decoder's, the picture, and the encoder's.
constexpr uint64_t kBytesPerPixel = 16;
/// Tables and buffers of decoders and encoders.
constexpr uint64_t kBytesPerPicture = 8u << 20;

}  // namespace

uint64_t workingMemory(const PictureSize& size) {
    const auto pixels = static_cast<uint64_t>(size.width) * static_cast<uint64_t>(size.height);
    return kBytesPerPicture + pixels * static_cast<uint64_t>(size.frames) * kBytesPerPixel;
}

MemoryGate::Share::~Share() {
    if (!gate_) return;
    const std::lock_guard guard(gate_->mutex_);
    gate_->free_ += bytes_;
    gate_->changed_.notify_all();
}

MemoryGate::Share MemoryGate::take(uint64_t bytes) {
    bytes = std::min(bytes, all_);
    std::unique_lock guard(mutex_);
    changed_.wait(guard, [&] { return free_ >= bytes; });
    free_ -= bytes;
    return Share(*this, bytes);
}

}  // namespace krl::player
