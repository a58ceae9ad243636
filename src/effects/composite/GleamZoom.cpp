#include "effects/composite/GleamZoom.h"

#include <algorithm>
#include <cmath>

#include "effects/composite/ZoomRays.h"
#include "kernels/blend/BlockPixels.h"

namespace krl {

namespace {

/// The falloff of one step, as that of 30 is told; of a number below 0, which has no such root, 0.
float stepFalloff(float falloff) {
    const auto step = static_cast<float>(std::pow(static_cast<double>(falloff), 0.03333333507180214));
    return step >= 1 ? 0.9998999834060669f : step > 0 ? step : 0.0f;
}

}  // namespace

Status gleamZoomComposite(ImageEngine& engine, const SecondImage& foreground, BlendMode compositeBlendMethod,
                          int32_t compositeTransparency, int32_t black, int32_t white, Point zoomPoint,
                          float brightnessStrength, float falloff, BlendMode blendMethod,
                          float levelsBrightness, int32_t transparency, std::span<const CurveKey> colorList,
                          GleamColour colourMethod, SampleQuality quality, int32_t userDistance) {
    if (Status state = engine.imageStatus()) return state;
    if (!engine.hasSizeOf(foreground)) return kStatusForegroundSize;
    if (!foreground.pixels) return kStatusNoImage;
    const ImageBuffer& image = *engine.buffer();
    const GleamStages stages(engine, foreground,
                             {compositeBlendMethod, compositeTransparency, black, white, blendMethod,
                              levelsBrightness, transparency, colorList, colourMethod});
    Scratch<Pixel> light(blockPixels(image));
    if (Status status = stages.extractLight(light)) return status;
    const RaySettings rays{zoomPoint, std::max(0.0f, brightnessStrength), stepFalloff(falloff), userDistance};
    const auto cast = quality == SampleQuality::Antialiased ? castZoomRaysAntialiased : castZoomRays;
    cast(light, image.width, image.height, rays);
    return stages.finish(light);
}

}  // namespace krl
