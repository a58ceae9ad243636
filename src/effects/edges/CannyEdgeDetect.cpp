#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "core/VectorLevels.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/neighbour/Gradient3x3.h"
#include "krlimage/edges.h"

namespace krl {

namespace {

/// A byte and its eight neighbours of the same channel.
struct Around {
    int16_t aboveLeft, above, aboveRight, left, own, right, belowLeft, below, belowRight;

    Around(const uint8_t* up, const uint8_t* at, const uint8_t* down)
        : aboveLeft(up[-4]),
          above(up[0]),
          aboveRight(up[4]),
          left(at[-4]),
          own(at[0]),
          right(at[4]),
          belowLeft(down[-4]),
          below(down[0]),
          belowRight(down[4]) {}

    int16_t highestNeighbour() const {
        const auto larger = [](int16_t a, int16_t b) { return a > b ? a : b; };
        return larger(larger(larger(aboveLeft, aboveRight), larger(belowLeft, belowRight)),
                      larger(larger(above, below), larger(left, right)));
    }
};

/// Two neighbours on opposite sides.
struct Pair {
    int16_t one, other;
};

/// The gradient of a byte, in the Sobel weights.
struct Gradient {
    int16_t vertical, horizontal;
    uint16_t tall, wide;  ///< their sizes

    explicit Gradient(const Around& n)
        : vertical(
              int16_t(n.belowLeft - n.aboveLeft + 2 * (n.below - n.above) + n.belowRight - n.aboveRight)),
          horizontal(
              int16_t(n.aboveLeft + 2 * n.left + n.belowLeft - n.aboveRight - 2 * n.right - n.belowRight)),
          tall(uint16_t(vertical < 0 ? -vertical : vertical)),
          wide(uint16_t(horizontal < 0 ? -horizontal : horizontal)) {}

    /// min(|vertical| + |horizontal|, 255)
    int16_t strength() const { return int16_t(tall + wide < 255 ? tall + wide : 255); }

    /// The neighbours along the gradient, by its direction atan(horizontal / vertical): above and below up to
    /// 22.5 degrees to either side of 0, left and right from 67.5 degrees on, else on a diagonal. The
    /// tangents of the two limits are the root of 2 less and plus 1; no ratio of two sums comes near enough
    /// to either for the product in fixed point to differ.
    Pair neighbours(const Around& n) const {
        const auto low = static_cast<uint16_t>((uint32_t(tall) * 27146u) >> 16);
        const bool alongRow = tall == 0 || wide > uint16_t(low + 2 * tall);
        const bool alongColumn = wide <= low;
        const bool rising = (vertical ^ horizontal) >= 0;
        const int16_t diagonalRight = rising ? n.aboveRight : n.belowRight,
                      diagonalLeft = rising ? n.belowLeft : n.aboveLeft;
        return {alongRow      ? n.right
                : alongColumn ? n.above
                              : diagonalRight,
                alongRow      ? n.left
                : alongColumn ? n.below
                              : diagonalLeft};
    }
};

/// A byte is kept where its gradient is no weaker than the two neighbours along it, and either reaches
/// `threshold` or has a neighbour above it: 255 - (kept ? byte : 0).
uint8_t cannyByte(const Around& n, int16_t threshold) {
    const Gradient gradient(n);
    const int16_t strength = gradient.strength();
    const Pair along = gradient.neighbours(n);
    const bool peak = (strength >= along.one) & (strength >= along.other);
    const bool kept = peak & ((strength >= threshold) | (n.highestNeighbour() > threshold));
    return static_cast<uint8_t>(255 - (kept ? n.own : 0));
}

KRL_VECTOR_LEVELS
void cannySpan(const Pixel* above, const Pixel* at, const Pixel* below, int32_t count, int16_t threshold,
               Pixel* fresh) {
    const uint8_t *up = firstByte(above), *row = firstByte(at), *down = firstByte(below);
    uint8_t* out = firstByte(fresh);
    for (int64_t i = 0; i < int64_t(count) * 4; ++i)
        out[i] = cannyByte(Around(up + i, row + i, down + i), threshold);
}

}  // namespace

/// The picture, inverted, where it has edges, and white elsewhere.
Status cannyEdgeDetect(ImageEngine& engine, int32_t blurAmount, int32_t threshold, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    if (image.width < 2 || image.height < 2) return kStatusOk;

    const ScratchImage copy(image);
    const ChannelTarget blurred = target == ChannelTarget::RGB ? target : ChannelTarget::Alpha;
    leftOutWithoutThreads(TentBlur(engine).blurInto(copy, image, blurAmount, blurred));
    // No strength and no byte is below 0 or above 255, so further thresholds are as good as these.
    const auto least = static_cast<int16_t>(clampTo(threshold, -1, 256));
    return filterInner(engine, copy.view(), ChannelMask(target),
                       [=](const Pixel* above, const Pixel* at, const Pixel* below, int32_t count,
                           Pixel* fresh) { cannySpan(above, at, below, count, least, fresh); });
}

void describeCannyEdgeDetect(Catalogue& catalogue) {
    catalogue.add("krlImageCannyEdgeDetect", cannyEdgeDetect)
        .summary("Keeps the picture, inverted, along its strongest edges and clears the rest to white.")
        .words("outline, edges, drawing, sketch, contour")
        .integer("blurAmount", {.from = 0, .to = 20, .example = 2, .least = 0, .pixels = true},
                 "softening before the search, in pixels")
        .integer("threshold", {.from = 0, .to = 255, .example = 60, .least = -1, .most = 256},
                 "how strong an edge must be to stay")
        .symbol("colourOrAlpha", colourOrAlpha(),
                refused("Canny Edge Detect invalid colourOrAlpha input (Image)"), kTargetMeaning)
        .inputFailure("Canny Edge Detect input failure (Image)")
        .failed("Failed Canny Edge Detect function (Image)");
}

}  // namespace krl
