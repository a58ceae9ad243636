#pragma once

#include "core/ImageEngine.h"

namespace krl {

/// An image that the host has just made for a method to fill.
struct NewImage {
    uint8_t* pixels = nullptr;
    ImageInfo info;

    /// First pixel of row `y`.
    Pixel* row(int32_t y) const { return reinterpret_cast<Pixel*>(pixels + ptrdiff_t(y) * info.rowBytes); }
};

}  // namespace krl
