#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/ImageCopy.h"
#include "core/VectorLevels.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/neighbour/Gradient3x3.h"
#include "krlimage/edges.h"

namespace krl {

namespace {

/// A gradient's direction is told from the ratio of its two sums alone: the sectors end at 22.5 and
/// 67.5 degrees, whose tangents are the root of 2 less and plus 1. No ratio of two sums comes near
/// enough to either for the fixed-point product to differ from the tangent.
inline uint16_t timesTangent22(uint16_t sum) { return static_cast<uint16_t>((uint32_t(sum) * 27146u) >> 16); }

struct CannyBytes {
    const uint8_t *above, *at, *below;
    int32_t threshold;  ///< -1..256, which is as good as any further

    /// 255 less what is kept of the byte at `i`.
    uint8_t operator()(int64_t i) const {
        const int16_t aboveLeft = above[i - 4], aboveRight = above[i + 4], belowLeft = below[i - 4],
                      belowRight = below[i + 4];
        const int16_t up = above[i], down = below[i], left = at[i - 4], right = at[i + 4], own = at[i];
        const auto vertical = int16_t(belowLeft - aboveLeft + 2 * (down - up) + belowRight - aboveRight);
        const auto horizontal =
            int16_t(aboveLeft + 2 * left + belowLeft - aboveRight - 2 * right - belowRight);
        const auto tall = uint16_t(vertical < 0 ? -vertical : vertical);
        const auto wide = uint16_t(horizontal < 0 ? -horizontal : horizontal);
        const auto strength = int16_t(tall + wide < 255 ? tall + wide : 255);

        const uint16_t low = timesTangent22(tall);
        const bool alongRow = tall == 0 || wide > uint16_t(low + 2 * tall);
        const bool alongColumn = wide <= low;
        const bool rising = (vertical ^ horizontal) >= 0;
        const int16_t diagonalRight = rising ? aboveRight : belowRight,
                      diagonalLeft = rising ? belowLeft : aboveLeft;
        const int16_t one = alongRow ? right : alongColumn ? up : diagonalRight;
        const int16_t other = alongRow ? left : alongColumn ? down : diagonalLeft;

        const auto larger = [](int16_t a, int16_t b) { return a > b ? a : b; };
        const int16_t highest = larger(larger(larger(aboveLeft, aboveRight), larger(belowLeft, belowRight)),
                                       larger(larger(up, down), larger(left, right)));
        const auto least = static_cast<int16_t>(threshold);
        const bool peak = (strength >= one) & (strength >= other);
        const bool kept = peak & ((strength >= least) | (highest > least));
        return static_cast<uint8_t>(255 - (kept ? own : 0));
    }
};

KRL_VECTOR_LEVELS
void cannySpan(const Pixel* above, const Pixel* at, const Pixel* below, int32_t count, int32_t threshold,
               Pixel* fresh) {
    const CannyBytes canny{firstByte(above), firstByte(at), firstByte(below), threshold};
    uint8_t* out = firstByte(fresh);
    for (int64_t i = 0; i < int64_t(count) * 4; ++i) out[i] = canny(i);
}

}  // namespace

/// The picture, inverted, where it has edges, and white elsewhere.
Status cannyEdgeDetect(ImageEngine& engine, int32_t blurAmount, int32_t threshold, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    if (image.width < 2 || image.height < 2) return kStatusOk;

    const ImageCopy copy(image);
    if (blurAmount >= 1) {
        TentBlur blur(engine.getThreadCount());
        if (target == ChannelTarget::RGB)
            blur.blurRGB(copy.row(0), image.height, image.width, blurAmount);
        else
            blur.blurAlpha(copy.row(0), image.height, image.width, blurAmount);
    }
    const int32_t least = clampTo(threshold, -1, 256);
    return filterInner(engine, copy.view(), ChannelMask(target),
                       [=](const Pixel* above, const Pixel* at, const Pixel* below, int32_t count,
                           Pixel* fresh) { cannySpan(above, at, below, count, least, fresh); });
}

void describeCannyEdgeDetect(Catalogue& catalogue) {
    catalogue.add("krlImageCannyEdgeDetect", cannyEdgeDetect)
        .summary("Keeps the picture, inverted, along its strongest edges and clears the rest to white.")
        .integer("blurAmount", {.from = 0, .to = 20, .example = 2, .least = 0},
                 "softening before the search, in pixels")
        .integer("threshold", {.from = 0, .to = 255, .example = 60, .least = -1, .most = 256},
                 "how strong an edge must be to stay")
        .symbol("colourOrAlpha", colourOrAlpha(),
                refused("Canny Edge Detect invalid colourOrAlpha input (Image)"), kTargetMeaning)
        .inputFailure("Canny Edge Detect input failure (Image)")
        .failed("Failed Canny Edge Detect function (Image)");
}

}  // namespace krl
