#include <limits>

#include "core/Bands.h"
#include "core/LookupTables.h"
#include "effects/tone/ToneEffects.h"
#include "kernels/blur/TentBlur.h"

namespace krl {

namespace {

/// Height of a step when `span` levels are made into `steps`; at least 1, and without end for none.
float stepHeight(int32_t span, int32_t steps) {
    if (steps == 0) return std::numeric_limits<float>::infinity();
    const auto height = static_cast<float>(double(span) / steps);
    return height < 1.0f ? 1.0f : height;
}

/// The low half rests on the lower edge of its steps, the high half on the upper edge.
struct StepCurve {
    uint8_t level[256];

    StepCurve(int32_t threshold, int32_t steps) {
        const float stepLow = stepHeight(threshold, steps), stepHigh = stepHeight(255 - threshold, steps);
        float resting = 0.0f, nextLow = stepLow, nextHigh = float(threshold + double(stepHigh));
        for (int32_t i = 0; i < 256; ++i) {
            if (i < threshold) {
                if (double(i) >= nextLow) {
                    resting = nextLow;
                    nextLow = float(double(nextLow) + stepLow);
                }
                level[i] = static_cast<uint8_t>(truncate(resting));
            } else {
                if (double(i) >= nextHigh) {
                    const double raised = double(nextHigh) + stepHigh;
                    nextHigh = raised > 255.0 ? 255.0f : float(raised);
                }
                level[i] = static_cast<uint8_t>(truncate(nextHigh));
            }
        }
    }
};

}  // namespace

Status thresholdPro(ImageEngine& engine, int32_t preBlur, int32_t threshold, int32_t steps,
                    ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const StepCurve curve(clampTo(threshold, 0, 255), steps);
    const ImageBuffer& image = *engine.buffer();
    // Every byte that the blur rewrites is read and rewritten once more below, so it needs no copy.
    TentBlur blur(engine.getThreadCount());
    if (target == ChannelTarget::RGB) {
        if (preBlur > 0) blur.blurRGB(image.row(0), image.height, image.width, preBlur);
        const int32_t* meanOf3 = engine.tables().meanOf3;
        return forEachPixel(engine, [&](Pixel& p) {
            p.blue = p.green = p.red = curve.level[meanOf3[p.blue + p.green + p.red]];
        });
    }
    if (preBlur > 0) blur.blurAlpha(image.row(0), image.height, image.width, preBlur);
    return forEachPixel(engine, [&](Pixel& p) { p.alpha = curve.level[p.alpha]; });
}

}  // namespace krl
