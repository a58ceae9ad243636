#pragma once

#include <cstring>

#include "core/ImageEngine.h"
#include "core/Scratch.h"

namespace krl {

/// A copy of a whole image block in scratch, of the same geometry: what an effect reads while it
/// writes the image.
class ImageCopy {
public:
    explicit ImageCopy(const ImageBuffer& source) : block_(source.bytes()), view_(source) {
        view_.pixels = block_.data();
        view_.end = block_.data() + block_.size();
        refresh(source);
    }

    /// Copies the image again, for a second pass.
    void refresh(const ImageBuffer& source) { std::memcpy(block_.data(), source.pixels, block_.size()); }

    const ImageBuffer& view() const { return view_; }
    Pixel* row(int32_t y) const { return view_.row(y); }
    /// To be walked beside the image that was copied.
    SecondImage asSecondImage() const {
        return {view_.pixels, {.width = view_.width, .height = view_.height, .rowBytes = view_.rowBytes}};
    }

private:
    Scratch<uint8_t> block_;
    ImageBuffer view_;
};

}  // namespace krl
