#include "player/cli/MemoryGate.h"

#include <algorithm>
#include <fstream>
#include <string>

#include "player/pictures/StripPipeline.h"

namespace krl::player {

namespace {

/// Bytes a pixel while effects run: 4 of the picture, 4 of a copy for `mix`, and up to 10 that effects work
/// in. Decoders take less.
constexpr uint64_t kBytesPerPixel = 18;
/// Encoders that take more.
struct EncoderNeed {
    PictureFormat format;
    uint64_t bytesPerPixel;
};
constexpr EncoderNeed kEncoderNeeds[] = {
    {PictureFormat::Gif, 34}, {PictureFormat::Heic, 44}, {PictureFormat::Jxl, 56}, {PictureFormat::Avif, 72}};
/// Tables and buffers of decoders and encoders.
constexpr uint64_t kBytesPerPicture = 8u << 20;

/// The number after a word in a file of the system, or the first one.
std::optional<uint64_t> numberIn(const std::filesystem::path& file, const std::string& after = "") {
    std::ifstream words(file);
    std::string word;
    while (!after.empty() && words >> word && word != after) continue;
    uint64_t number = 0;
    return words >> number ? std::optional(number) : std::nullopt;
}

}  // namespace

uint64_t workingMemory(const PictureSize& size, std::optional<PictureFormat> written) {
    const auto pixels = static_cast<uint64_t>(size.width) * static_cast<uint64_t>(size.height);
    uint64_t bytesPerPixel = kBytesPerPixel;
    for (const EncoderNeed& need : kEncoderNeeds)
        if (written == need.format) bytesPerPixel = need.bytesPerPixel;
    return kBytesPerPicture + pixels * static_cast<uint64_t>(size.frames) * bytesPerPixel;
}

uint64_t workingMemoryOfStrips(int32_t width, size_t pixels) {
    const uint64_t strip = std::max(static_cast<uint64_t>(width), static_cast<uint64_t>(pixels));
    return kBytesPerPicture + strip * (kBytesPerPixel + sizeof(Pixel) * StripPipeline::kStrips);
}

uint64_t availableMemory(const std::filesystem::path& root) {
    const uint64_t system = numberIn(root / "proc/meminfo", "MemAvailable:").value_or(0) * 1024;
    const std::filesystem::path container = root / "sys/fs/cgroup";
    const auto most = numberIn(container / "memory.max"), used = numberIn(container / "memory.current");
    if (!most || !used) return system;
    // Files that were read count as used, but make room for others.
    const uint64_t files = numberIn(container / "memory.stat", "inactive_file").value_or(0);
    const uint64_t held = *used - std::min(files, *used);
    return std::min(system, *most - std::min(held, *most));
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
