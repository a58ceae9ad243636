#pragma once

#include "fields/NewImage.h"
#include "host/MethodCall.h"

namespace krl::host {

/// A picture asked of the host for a method to fill: locked for the life of this object, and the
/// host's again unless it is given up.
class NewPicture {
public:
    NewPicture(const MethodCall& call, int32_t width, int32_t height)
        : images_(call.images()), value_(call.values()) {
        ScriptValue made;
        if (images::CreateImage::call(images_, width, height, 32, 8, 0, &made) != kHostOk) return;
        *value_.out() = made;
        ImageLock lock;
        images::QueryImage::call(images_, &made, &image_.info);
        images::LockImage::call(images_, &made, &lock);
        image_.pixels = lock.pixels;
        locked_ = true;
    }
    ~NewPicture() { unlock(); }
    NewPicture(const NewPicture&) = delete;
    NewPicture& operator=(const NewPicture&) = delete;

    /// Null pixels where the host could not make it.
    const NewImage& image() const { return image_; }
    /// The picture, unlocked; the caller has the reference.
    ScriptValue give() {
        unlock();
        return value_.release();
    }

private:
    void unlock() {
        if (locked_) images::UnlockImage::call(images_, value_.get());
        locked_ = false;
    }

    HostInterface* images_;
    OwnedValue value_;
    NewImage image_;
    bool locked_ = false;
};

}  // namespace krl::host
