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
    /// All of it in address order, padding included.
    std::span<const Pixel> block() const { return {row(0), block_.size() / sizeof(Pixel)}; }

private:
    Scratch<uint8_t> block_;
    ImageBuffer view_;
};

}  // namespace krl
