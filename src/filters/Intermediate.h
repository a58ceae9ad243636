#pragma once

#include "core/ImageEngine.h"
#include "core/Scratch.h"

namespace krl {

/// A picture of the image's size that a first pass fills and a second one reads.
class Intermediate {
public:
    explicit Intermediate(const ImageBuffer& image) : block_(image.bytes()), view_(image) {
        view_.pixels = block_.data();
        view_.end = block_.end();
    }
    const ImageBuffer& view() const { return view_; }

private:
    Scratch<uint8_t> block_;
    ImageBuffer view_;
};

}  // namespace krl
