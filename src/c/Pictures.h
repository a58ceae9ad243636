#pragma once

#include <deque>
#include <memory>

#include "catalogue/Value.h"
#include "krlimage.h"

namespace krl::c {

/// Whether `picture` describes memory that can be a picture.
bool isPicture(const krl_picture* picture);
/// A picture over the caller's memory; it must be one.
Picture pictureOf(const krl_picture& picture);
krl_picture describe(const Picture& picture);
/// Exchanges red and blue everywhere.
void reorder(const Picture& picture);

/// The pictures of one call as methods take them, BGRA without padding. Those of another form are copied, or
/// where the method rewrites them anyway reordered in place; at the end of this object's life the caller's
/// have what became of them.
class NativePictures {
public:
    NativePictures() = default;
    ~NativePictures();
    NativePictures(const NativePictures&) = delete;
    NativePictures& operator=(const NativePictures&) = delete;

    /// The native form of a picture that the method reads, and of every picture within a value.
    Value lend(const Value& value) { return convert(value, false); }
    /// The same for pictures that the method changes.
    Value lendToChange(const Value& value) { return convert(value, true); }
    /// The native form of a loaded picture that the method rewrites. To be called last: it may reorder memory
    /// that other pictures have a part in.
    Picture rewrite(const Picture& picture);

private:
    struct Copy {
        Picture callers, native;
        bool isChanged = false;
    };
    Value convert(const Value& value, bool isChanged);
    const Picture& nativeOf(const Picture& picture, bool isChanged);
    Copy* findCopy(const Picture& picture);

    std::deque<Copy> copies_;
    Picture reordered_;
};

}  // namespace krl::c
