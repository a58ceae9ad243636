#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>

#include "player/pictures/PictureFiles.h"

namespace krl::player {

/// How much memory a picture takes at most from reading to writing in that format.
uint64_t workingMemory(const PictureSize& size, std::optional<PictureFormat> written = {});

/// The same for a picture of this width that goes through strips of so many pixels.
uint64_t workingMemoryOfStrips(int32_t width, size_t pixels);

/// The memory that the system can still give, within the limit of a container; 0 where it does not say. Its
/// files are below `root`.
uint64_t availableMemory(const std::filesystem::path& root = "/");

/// Holds pictures back while those in progress take as much memory as they may.
class MemoryGate {
public:
    /// 0 bytes is no limit.
    explicit MemoryGate(uint64_t bytes) : all_(bytes), free_(bytes) {}

    bool hasLimit() const { return all_ > 0; }

    /// Memory that one picture holds.
    class Share {
    public:
        Share() = default;
        Share(MemoryGate& gate, uint64_t bytes) : gate_(&gate), bytes_(bytes) {}
        ~Share();
        Share(const Share&) = delete;
        Share& operator=(const Share&) = delete;

    private:
        MemoryGate* gate_ = nullptr;
        uint64_t bytes_ = 0;
    };

    /// Waits until so much is free. A picture that takes more than all waits until it is alone.
    Share take(uint64_t bytes);

private:
    const uint64_t all_;
    uint64_t free_;
    std::mutex mutex_;
    std::condition_variable changed_;
};

}  // namespace krl::player
