#include "kernels/blend/AlphaScale.h"

#include "core/PixelWord.h"
#include "core/VectorLevels.h"

namespace krl {

KRL_VECTOR_LEVELS
void scaleByAlpha(const Pixel* pixels, Pixel* scaled, int32_t count) {
    for (int32_t i = 0; i < count; ++i) scaled[i] = scaledByAlpha(pixels[i]);
}

KRL_VECTOR_LEVELS
bool areOpaque(const Pixel* pixels, int32_t count) {
    uint32_t common = ~0u;
    for (int32_t i = 0; i < count; ++i) common &= wordOf(pixels[i]);
    return common >= 0xFF000000u;
}

bool hasTransparency(const ImageBuffer& image) {
    for (int32_t y = 0; y < image.height; ++y)
        if (!areOpaque(image.row(y), image.width)) return true;
    return false;
}

}  // namespace krl
