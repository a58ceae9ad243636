#include "filters/AlphaScale.h"

#include <bit>

#include "core/Clones.h"

namespace krl {

KRL_WIDE_CLONES
void scaleByAlpha(const Pixel* pixels, Pixel* scaled, int32_t count) {
    for (int32_t i = 0; i < count; ++i) scaled[i] = scaledByAlpha(pixels[i]);
}

KRL_WIDE_CLONES
static uint32_t commonBits(const Pixel* pixels, int32_t count) {
    uint32_t common = ~0u;
    for (int32_t i = 0; i < count; ++i) common &= std::bit_cast<uint32_t>(pixels[i]);
    return common;
}

bool hasTransparency(const ImageBuffer& image) {
    for (int32_t y = 0; y < image.height; ++y)
        if (std::bit_cast<Pixel>(commonBits(image.row(y), image.width)).alpha != 255) return true;
    return false;
}

}  // namespace krl
