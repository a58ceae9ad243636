#pragma once

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
        caller_.lockPicture(made, image_.pixels);
        locked_ = true;
    }
    ~NewPicture() { unlock(); }
    NewPicture(const NewPicture&) = delete;
    NewPicture& operator=(const NewPicture&) = delete;

    /// Null pixels where the caller could not make it.
    const NewImage& image() const { return image_; }
    /// The picture, unlocked, with its reference.
    ValueHandle give() {
        unlock();
        return value_.release();
    }

private:
    void unlock() {
        if (locked_) caller_.unlockPicture(*value_);
        locked_ = false;
    }

    Caller& caller_;
    HeldValue value_;
    NewImage image_;
    bool locked_ = false;
};

}  // namespace krl
