#include "effects/film/Saturate.h"

#include "core/VectorLevels.h"
#include "kernels/colour/HsvLanes.h"

namespace krl {

namespace {

KRL_VECTOR_LEVELS void scaleSaturations(float (&saturations)[kBatchPixels], float factor) {
    for (float& saturation : saturations)
        saturation = static_cast<float>(clampUnit(double{saturation} * factor));
}

}  // namespace

float saturationFactor(float saturation) { return clampTo(saturation, 0.0f, 2.0f); }

void saturate(ColourLanes& colours, float factor) {
    HsvLanes hsv;
    toHsv(colours, hsv);
    scaleSaturations(hsv.saturation, factor);
    fromHsv(hsv, colours, 0.0);
}

}  // namespace krl
