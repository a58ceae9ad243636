#include "kernels/neighbour/Gradient3x3.h"

#include <cmath>

#include "core/Batch.h"
#include "core/VectorLevels.h"

namespace krl {

namespace {

constexpr size_t kChannels = 4;

/// What each column of bytes adds to the gradients of the pixels beside it and of its own.
struct Columns {
    /// The bytes of a batch and of the pixels left and right of it.
    static constexpr size_t kBytes = (kBatchPixels + 2) * kChannels;

    int16_t sum[kBytes];   ///< of the three rows, weighted 1, 2, 1
    int16_t rise[kBytes];  ///< the row below less the row above
};

/// The strengths of at most a batch of pixels. Sums of columns fit 16 bits, so that the many additions take
/// eight bytes at a time even at the lowest level.
KRL_VECTOR_LEVELS
void strengthsOfBatch(const uint8_t* up, const uint8_t* row, const uint8_t* down, size_t pixels,
                      uint8_t* strengths) {
    Columns columns;
    for (size_t i = 0; i < (pixels + 2) * kChannels; ++i) {
        columns.sum[i] = static_cast<int16_t>(up[i] + 2 * row[i] + down[i]);
        columns.rise[i] = static_cast<int16_t>(down[i] - up[i]);
    }
    for (size_t i = 0; i < pixels * kChannels; ++i) {
        const size_t own = i + kChannels, right = own + kChannels;
        const auto across = static_cast<int16_t>(columns.sum[i] - columns.sum[right]);
        const auto upright =
            static_cast<int16_t>(columns.rise[i] + 2 * columns.rise[own] + columns.rise[right]);
        // Single precision truncates as exact roots do: below 2^24 the root of a number just under a
        // square stays below the root of that square.
        const int32_t square = upright * upright + across * across;
        const auto root = static_cast<int32_t>(std::sqrt(static_cast<float>(square)));
        strengths[i] = static_cast<uint8_t>(root < 255 ? root : 255);
    }
}

}  // namespace

void sobelStrengths(const Pixel* above, const Pixel* at, const Pixel* below, int32_t count,
                    Pixel* strengths) {
    forEachBatch(static_cast<size_t>(count), [&](size_t start, size_t pixels) {
        const auto fromLeft = [&](const Pixel* row) { return &(row + start - 1)->blue; };
        strengthsOfBatch(fromLeft(above), fromLeft(at), fromLeft(below), pixels, &strengths[start].blue);
    });
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
