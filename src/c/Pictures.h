#pragma once

#include <deque>
#include <memory>
#include <string>

#include "catalogue/Value.h"
#include "krlimage.h"
#include "look/PictureMemory.h"

namespace krl::c {

/// Whether `picture` describes memory that can be a picture.
bool isPicture(const krl_picture* picture);
/// A picture over the caller's memory; it must be one.
Picture pictureOf(const krl_picture& picture);
krl_picture describe(const Picture& picture);
/// The same; throws `Problem` for what is no picture, with words that begin with `prefix`.
Picture requirePicture(const krl_picture* picture, const std::string& prefix = "");
/// Where the pixels of a call come from, and where they go: the same picture for a call in place.
struct Route {
    Picture from, to;

    bool isInPlace() const { return isSamePlace(from, to) && from.order == to.order; }
    /// `from`, or a copy if it shares memory with `to` but not the place of every pixel.
    Picture apartFrom() const {
        return isSamePlace(from, to) || !sharesMemory(from, to) ? from : copyOf(from);
    }
};

/// The route between pictures of a caller, of which `from` is null for a call in place. Throws `Problem` for
/// what is no picture, and for pictures of different sizes.
Route requireRoute(const krl_picture* from, const krl_picture* to, const std::string& prefix = "");
/// Stands for a caller's NULL where a picture has to be: it has no pixels.
const krl_picture* given(const krl_picture* picture);

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
    /// The native form of a loaded picture that the method rewrites, with the pixels of `from`: the picture
    /// itself, or one that shares no memory with it. To be called last: it writes memory that other pictures
    /// may have a part in.
    Picture rewrite(const Picture& picture, const Picture& from);
    /// The picture itself if it is without padding, or a native form with its pixels.
    Picture tight(const Picture& picture) { return hasOwnForm(picture) ? picture : nativeOf(picture, true); }

private:
    struct Copy {
        Picture callers, native;
        bool isChanged = false;
    };
    Value convert(const Value& value, bool isChanged);
    const Picture& nativeOf(const Picture& picture, bool isChanged);
    Copy* findCopy(const Picture& picture);
    bool hasOwnForm(const Picture& picture) { return isTight(picture) && !findCopy(picture); }

    std::deque<Copy> copies_;
};

}  // namespace krl::c
