#include <limits>

#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/Bands.h"
#include "core/LookupTables.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/colour/Grey.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/tone.h"

namespace krl {

namespace {

/// Height of a step when `span` levels are divided into `steps`: at least 1, and infinite for no steps.
float stepHeight(int32_t span, int32_t steps) {
    if (steps == 0) return std::numeric_limits<float>::infinity();
    const auto height = static_cast<float>(double(span) / steps);
    return height < 1.0f ? 1.0f : height;
}

/// A level below `threshold` drops to the lower edge of its step, one from there on rises to the upper edge.
/// The edges are summed in single precision, step by step.
ByteCurve stepCurve(int32_t threshold, int32_t steps) {
    const float stepLow = stepHeight(threshold, steps), stepHigh = stepHeight(255 - threshold, steps);
    float edge = 0.0f, nextLow = stepLow, nextHigh = float(threshold + double(stepHigh));
    return byteCurve([&](int32_t i) {
        if (i < threshold) {
            if (double(i) >= nextLow) {
                edge = nextLow;
                nextLow = float(double(nextLow) + stepLow);
            }
            return truncate(edge);
        }
        if (double(i) >= nextHigh) {
            const double raised = double(nextHigh) + stepHigh;
            nextHigh = raised > 255.0 ? 255.0f : float(raised);
        }
        return truncate(nextHigh);
    });
}

}  // namespace

/// Splits tones at a threshold and makes steps of either part, after a blur if there is one. The threshold is
/// limited to 0..255; above 255 steps, and below 0, every step is one level high.
Status thresholdPro(ImageEngine& engine, int32_t preBlur, int32_t threshold, int32_t steps,
                    ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ByteCurve curve = stepCurve(clampTo(threshold, 0, 255), steps);
    const ImageBuffer& image = *engine.buffer();
    // Every byte that the blur rewrites is read and rewritten once more below, so it needs no copy.
    TentBlur blur(engine);
    if (target == ChannelTarget::RGB) {
        if (preBlur > 0)
            leftOutWithoutThreads(blur.blurRGB(image.row(0), image.height, image.width, preBlur));
        return recolourByMean(engine,
                              [&](Pixel* first, Pixel* last) { applyCurveTo<0, 1, 2>(first, last, curve); });
    }
    if (preBlur > 0) leftOutWithoutThreads(blur.blurAlpha(image.row(0), image.height, image.width, preBlur));
    return applyCurve(engine, ChannelTarget::Alpha, curve);
}

void describeThresholdPro(Catalogue& catalogue) {
    catalogue.add("krlImageThresholdPro", thresholdPro)
        .summary("Splits tones at a threshold and makes steps of either half.")
        .words("steps, stencil, posterize, binary")
        .integer("preBlur", {.from = 0, .to = 30, .example = 2, .least = 0, .pixels = true},
                 "softening before the split, in pixels")
        .integer("threshold", {.from = 0, .to = 255, .example = 110, .least = 0, .most = 255},
                 "level at which tones are split")
        .integer("steps", {.from = 1, .to = 16, .example = 3}, "steps of each half; 1 gives black and white")
        .symbol("colourOrAlpha", colourOrAlpha(), refused("Threshold invalid colourOrAlpha input (Image)"),
                "greys by the mean of the three colours, or transparency alone")
        .failsWith("Threshold input failure (Image)")
        .inputFailure("Theshold input failure (Image)")
        .failed("Failed Threshold function (Image)");
}

}  // namespace krl
