#include "player/cli/MemoryGate.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <string>

namespace krl::player {

namespace {

/// Copies of 4 bytes a pixel that exist at the same time: the decoder's, the picture, and the encoder's.
constexpr uint64_t kBytesPerPixel = 16;
/// Tables and buffers of decoders and encoders.
constexpr uint64_t kBytesPerPicture = 8u << 20;

/// The number after a word in a file of the system, or the first one.
std::optional<uint64_t> numberIn(const char* file, const std::string& after) {
    std::ifstream words(file);
    std::string word;
    while (!after.empty() && words >> word && word != after) continue;
    uint64_t number = 0;
    return words >> number ? std::optional(number) : std::nullopt;
}

}  // namespace

uint64_t workingMemory(const PictureSize& size) {
    const auto pixels = static_cast<uint64_t>(size.width) * static_cast<uint64_t>(size.height);
    return kBytesPerPicture + pixels * static_cast<uint64_t>(size.frames) * kBytesPerPixel;
}

uint64_t availableMemory() {
    const uint64_t system = numberIn("/proc/meminfo", "MemAvailable:").value_or(0) * 1024;
    const auto most = numberIn("/sys/fs/cgroup/memory.max", "");
    const auto used = numberIn("/sys/fs/cgroup/memory.current", "");
    return most && used ? std::min(system, *most - std::min(*used, *most)) : system;
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
