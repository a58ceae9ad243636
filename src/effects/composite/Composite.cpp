#include "effects/composite/Composite.h"

#include "kernels/blend/BlendRun.h"
#include "kernels/blend/Chunks.h"

namespace krl {

Status composite(ImageEngine& engine, const SecondImage& foreground, BlendMode blendMethod,
                 AlphaRule backgroundAlpha) {
    if (Status state = engine.imageStatus()) return state;
    if (!foreground.pixels) return kStatusNoPixels;
    if (!engine.hasSizeOf(foreground)) return kStatusForegroundSize;
    const bool straight = backgroundAlpha == AlphaRule::BackgroundAlphaYes;
    const BlendRun blend = straight ? overBlendRun(blendMethod) : shiftBlendRun(blendMethod);
    return forEachRunBeside(engine, foreground, [&](Pixel* pixels, size_t count, const Pixel* front) {
        blend(pixels, front, count, engine.tables());
    });
}

}  // namespace krl
