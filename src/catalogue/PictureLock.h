#pragma once

#include <utility>

#include "catalogue/Caller.h"

namespace krl {

/// Whether `info` describes rows of 32-bit pixels that lie one after another. Pictures of other depths have
/// shorter rows, and some hosts store rows from the bottom up; effects take neither.
inline bool hasWholePixels(const ImageInfo& info) {
    return info.width >= 0 && info.height >= 0 && int64_t{info.rowBytes} >= int64_t{info.width} * 4;
}

/// The pixels of a caller's picture, locked for the life of this object. A lock that the caller refused is
/// not given back.
class PictureLock {
public:
    PictureLock(Caller& caller, const ValueHandle& picture)
        : caller_(&caller), picture_(picture), held_(caller.lockPicture(picture, pixels_) == kCallOk) {
        if (!held_) pixels_ = nullptr;
    }
    ~PictureLock() {
        if (held_) caller_->unlockPicture(picture_);
    }
    PictureLock(PictureLock&& other) noexcept
        : caller_(other.caller_),
          picture_(other.picture_),
          pixels_(other.pixels_),
          held_(std::exchange(other.held_, false)) {}
    PictureLock& operator=(PictureLock&&) = delete;

    bool held() const { return held_; }
    /// Null if the lock was refused.
    uint8_t* pixels() const { return pixels_; }
    /// Leaves the picture locked for good.
    void keep() { held_ = false; }
    /// Lets go before the end of the scope; what the caller answered.
    CallCode unlock() {
        if (!std::exchange(held_, false)) return kCallOk;
        return caller_->unlockPicture(picture_);
    }

private:
    Caller* caller_;
    ValueHandle picture_;
    uint8_t* pixels_ = nullptr;
    bool held_;
};

}  // namespace krl
