#pragma once

#include <optional>

#include "catalogue/Call.h"

namespace krl {

/// A picture asked of the caller for a method to fill: locked for the life of this object, and the
/// caller's again unless it is given up.
class NewPicture {
public:
    NewPicture(const Call& call, int32_t width, int32_t height)
        : caller_(call.caller()), value_(call.caller()) {
        ValueHandle made;
        if (caller_.makePicture(width, height, made) != kCallOk) return;
        value_.take(made);
        caller_.describePicture(made, image_.info);
        lock_.emplace(caller_, made);
        if (hasWholePixels(image_.info)) image_.pixels = lock_->pixels();
    }
    NewPicture(const NewPicture&) = delete;
    NewPicture& operator=(const NewPicture&) = delete;

    /// Null pixels if the caller could not make it.
    const NewImage& image() const { return image_; }
    /// The picture, unlocked, with its reference.
    ValueHandle give() {
        lock_.reset();
        return value_.release();
    }

private:
    Caller& caller_;
    HeldValue value_;
    NewImage image_;
    std::optional<PictureLock> lock_;
};

}  // namespace krl
