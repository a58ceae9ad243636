#pragma once

#include <cstring>

#include "core/Scratch.h"
#include "krlimage/engine.h"

namespace krl {

/// An uninitialised scratch block with an image's geometry, for passing pixels from one pass to the next.
class ScratchImage {
public:
    explicit ScratchImage(const ImageBuffer& image) : block_(image.bytes()), view_(image) {
        view_.pixels = block_.begin();
        view_.end = block_.end();
    }

    const ImageBuffer& view() const { return view_; }
    Pixel* row(int32_t y) const { return view_.row(y); }

private:
    Scratch<uint8_t> block_;
    ImageBuffer view_;
};

/// A copy of a whole image block, which an effect reads while it writes the image.
class ImageCopy : public ScratchImage {
public:
    explicit ImageCopy(const ImageBuffer& source) : ScratchImage(source) { refresh(source); }

    /// Copies the image again, for a second pass.
    void refresh(const ImageBuffer& source) { std::memcpy(view().pixels, source.pixels, source.bytes()); }
};

}  // namespace krl
