#include <algorithm>

#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/Batch.h"
#include "core/ChannelMask.h"
#include "core/VectorLevels.h"
#include "kernels/path/PathSum.h"
#include "krlimage/stylise.h"

namespace krl {

namespace {

KRL_VECTOR_LEVELS
void meanOfFour(const uint8_t* a, const uint8_t* b, const uint8_t* c, const uint8_t* d, int32_t count,
                uint8_t* means) {
    for (int32_t i = 0; i < count; ++i) means[i] = static_cast<uint8_t>((a[i] + b[i] + c[i] + d[i]) >> 2);
}

}  // namespace

/// The mean of four copies, shifted up, down, left and right.
Status fragment(ImageEngine& engine, int32_t distance, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const PathSource source(engine, target == ChannelTarget::RGBA);
    if (source.status()) return source.status();
    const ChannelMask mask(target);
    const int32_t width = source.width(), height = source.height();
    // Up and down are exchanged where the distance is negative, and their mean is the same.
    const auto reach =
        static_cast<int32_t>(std::min<int64_t>(std::abs(int64_t(distance)), std::max(width, height)));
    return forEachRow(engine, [&](Pixel* row, int32_t y) {
        const auto sourceRow = [&](int32_t i) {
            return source.pixels() + ptrdiff_t(clampTo(i, 0, height - 1)) * width;
        };
        const Pixel *up = sourceRow(y - reach), *down = sourceRow(y + reach), *at = sourceRow(y);
        const auto write = [&](int32_t x, const Pixel* left, const Pixel* right, int32_t count) {
            Pixel means[kBatchPixels];
            meanOfFour(firstByte(up + x), firstByte(down + x), firstByte(left), firstByte(right), count * 4,
                       firstByte(means));
            mask.write(row + x, means, count);
        };
        const auto writeAtEdge = [&](int32_t x) {
            write(x, at + std::max(x - reach, 0), at + std::min(x + reach, width - 1), 1);
        };
        const int32_t inner = std::min(reach, width), end = std::max(width - reach, inner);
        for (int32_t x = 0; x < inner; ++x) writeAtEdge(x);
        forEachBatch(static_cast<size_t>(end - inner), [&](size_t start, size_t count) {
            const int32_t x = inner + static_cast<int32_t>(start);
            write(x, at + x - reach, at + x + reach, static_cast<int32_t>(count));
        });
        for (int32_t x = end; x < width; ++x) writeAtEdge(x);
    });
}

void describeFragment(Catalogue& catalogue) {
    catalogue.add("krlImageFragment", fragment)
        .summary("Lays four faint copies of the picture around its place.")
        .words("double vision, shake, ghost, blur")
        .integer("distance", {.from = 0, .to = 100, .example = 8, .pixels = true},
                 "pixels by which each copy is shifted")
        .symbol("colourOrAlpha", anyChannels(), refused("Fragment invalid colourOrAlpha input (Image)"),
                kWeighedMeaning)
        .inputFailure("Fragment input failure (Image)")
        .failed("Failed Fragment function (Image)");
}

}  // namespace krl
