#include "filters/AlphaScale.h"

#include "core/Clones.h"

namespace krl {

KRL_WIDE_CLONES
void scaleByAlpha(const Pixel* pixels, Pixel* scaled, int32_t count) {
    for (int32_t i = 0; i < count; ++i) scaled[i] = scaledByAlpha(pixels[i]);
}

bool hasTransparency(const ImageBuffer& image) {
    for (int32_t y = 0; y < image.height; ++y) {
        const Pixel* row = image.row(y);
        uint8_t common = 255;
        for (int32_t x = 0; x < image.width; ++x) common &= row[x].alpha;
        if (common != 255) return true;
    }
    return false;
}

}  // namespace krl
