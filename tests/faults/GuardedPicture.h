#pragma once

#include <cstddef>
#include <cstdint>

#include "krlimage/engine.h"

namespace krl::test {

/// How a picture of the host's lies in memory.
struct PictureForm {
    int32_t bitsPerPixel = 32;
    int32_t padding = 0;    ///< bytes at the end of each row
    bool bottomUp = false;  ///< the first row comes last, and `rowBytes` is negative
};

/// A picture whose block ends where a page that nobody may touch begins. Before the block lie bytes that
/// show whether somebody wrote there.
class GuardedPicture {
public:
    /// Random bytes, the same for the same `seed`.
    GuardedPicture(int32_t width, int32_t height, PictureForm form, uint32_t seed);
    ~GuardedPicture();
    GuardedPicture(const GuardedPicture&) = delete;
    GuardedPicture& operator=(const GuardedPicture&) = delete;

    const ImageInfo& info() const { return info_; }
    /// The first row.
    uint8_t* pixels() const;
    /// Puts the bytes back that it was made with.
    void restore();
    bool isUntouched() const { return hash() == firstHash_; }
    bool guardsAreIntact() const;
    /// Of the block.
    uint64_t hash() const;

    int32_t locks = 0;

private:
    ImageInfo info_;
    uint32_t seed_;
    uint8_t* pages_ = nullptr;
    size_t pageBytes_ = 0, blockBytes_ = 0;
    uint8_t* block_ = nullptr;
    uint64_t firstHash_ = 0;
};

}  // namespace krl::test
