#include "effects/composite/Composite.h"

#include "kernels/blend/BlockPixels.h"
#include "kernels/blend/BlendFunction.h"

namespace krl {

Status composite(ImageEngine& engine, const SecondImage& foreground, BlendMode blendMethod,
                 AlphaRule backgroundAlpha) {
    if (Status state = engine.imageStatus()) return state;
    if (!foreground.pixels) return kStatusNoPixels;
    if (!engine.hasSizeOf(foreground)) return kStatusForegroundSize;
    const bool straight = backgroundAlpha == AlphaRule::BackgroundAlphaYes;
    const BlendFunction blend = straight ? overBlendSpan(blendMethod) : shiftBlendSpan(blendMethod);
    return forEachSpanBeside(engine, foreground, [&](Pixel* pixels, size_t count, const Pixel* front) {
        blend(pixels, front, count, engine.tables());
    });
}

}  // namespace krl
