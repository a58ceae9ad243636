#pragma once

#include <cstdint>

namespace krl::player {

/// The pixels that a picture file may hold if nobody says otherwise: 1 GiB in memory.
inline constexpr int64_t kUsualPixelLimit = int64_t{1} << 28;

/// While this object lives, picture files with more pixels in all their frames are refused by their header: a
/// file of a few kilobytes can unpack to more memory than there is.
class PixelLimit {
public:
    explicit PixelLimit(int64_t pixels);
    ~PixelLimit();
    PixelLimit(const PixelLimit&) = delete;
    PixelLimit& operator=(const PixelLimit&) = delete;

    /// The limit of the process.
    static int64_t current();

private:
    int64_t before_;
};

}  // namespace krl::player
