#include "composite/Composite.h"

#include "composite/BlendRun.h"
#include "core/Bands.h"

namespace krl {

Status composite(ImageEngine& engine, const SecondImage& foreground, BlendMode blendMethod,
                 AlphaRule backgroundAlpha) {
    if (Status state = engine.imageStatus()) return state;
    if (!foreground.pixels) return kStatusNoPixels;
    if (!engine.hasSizeOf(foreground)) return kStatusForegroundSize;
    const bool straight = backgroundAlpha == AlphaRule::BackgroundAlphaYes;
    const BlendRun blend = straight ? overBlendRun(blendMethod) : shiftBlendRun(blendMethod);
    return forEachPixelRun(engine, [&](Pixel* first, Pixel* last) {
        const Pixel* front = foreground.begin() + (first - engine.buffer()->row(0));
        blend(first, front, static_cast<size_t>(last - first), engine.tables());
    });
}

}  // namespace krl
