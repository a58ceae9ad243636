#pragma once

#if defined(KRL_WITH_VIPS)

#include <mutex>
#include <shared_mutex>
#include <string>
#include <utility>

#include "player/pictures/Picture.h"
#include "player/pictures/VipsLibrary.h"

/// What reading and writing with libvips share.
namespace krl::player {

/// Starts the library once.
void startVips();

/// Loads one of the library's modules, such as `vips-heif.so`, which starting it does not.
void loadVipsModule(const char* name);

/// The reason for the last failure of libvips: the system's error text if there is one, otherwise the first
/// line.
std::string vipsReason();

/// Throws `PictureError`: `cannot read a.png: ` and the reason.
[[noreturn]] void failAt(const std::string& doing);

/// Work in parallel shares this lock; who needs the error log alone takes it exclusively.
std::shared_mutex& vipsLog();

/// libvips keeps one error log for all threads, so an operation that fails in parallel with others is
/// retried alone to get its own error text.
template <class Work>
auto tellingItsOwnReason(const Work& work) {
    try {
        const std::shared_lock lock(vipsLog());
        return work();
    } catch (const PictureError&) {
        const std::unique_lock lock(vipsLog());
        vips_error_clear();
        return work();
    }
}

/// A step of a chain of images; each replaces the one before it.
class VipsChain {
public:
    explicit VipsChain(VipsImage* first) : image_(first) {}
    ~VipsChain() { g_object_unref(image_); }
    VipsChain(const VipsChain&) = delete;
    VipsChain& operator=(const VipsChain&) = delete;

    VipsImage* get() const { return image_; }
    /// The image, for another chain.
    VipsImage* share() const {
        g_object_ref(image_);
        return image_;
    }

    /// Runs a libvips operation that stores its result through the given pointer.
    template <class Operation>
    void then(const std::string& doing, Operation&& operation) {
        VipsImage* next = nullptr;
        if (operation(image_, &next)) failAt(doing);
        g_object_unref(std::exchange(image_, next));
    }

private:
    VipsImage* image_;
};

}  // namespace krl::player

#endif
