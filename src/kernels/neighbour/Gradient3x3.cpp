#include "kernels/neighbour/Gradient3x3.h"

#include "core/VectorLevels.h"

namespace krl {

KRL_VECTOR_LEVELS
void sobelStrengths(const Pixel* above, const Pixel* at, const Pixel* below, int32_t count,
                    Pixel* strengths) {
    const uint8_t *up = &above->blue, *row = &at->blue, *down = &below->blue;
    uint8_t* out = &strengths->blue;
    for (int64_t i = 0; i < int64_t(count) * 4; ++i) {
        const SobelSums sums = sobelSums(up + i, row + i, down + i);
        // Single precision truncates as exact roots do: below 2^24 the root of a number just under a
        // square stays below the root of that square.
        const int32_t square = sums.vertical * sums.vertical + sums.horizontal * sums.horizontal;
        const auto root = static_cast<int32_t>(std::sqrt(static_cast<float>(square)));
        out[i] = static_cast<uint8_t>(root < 255 ? root : 255);
    }
}

void repairBorder(const ImageBuffer& image, ChannelMask mask) {
    const int32_t width = image.width, height = image.height;
    if (width < 2 || height < 2) return;
    mask.write(image.row(0), image.row(1), width);
    mask.write(image.row(height - 1), image.row(height - 2), width);
    for (int32_t y = 0; y < height; ++y) {
        Pixel* row = image.row(y);
        row[0] = mask.merge(row[0], row[1]);
        row[width - 1] = mask.merge(row[width - 1], row[width - 2]);
    }
}

}  // namespace krl
