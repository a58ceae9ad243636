#include "catalogue/Catalogue.h"
#include "core/VectorLevels.h"
#include "kernels/colour/ColourLanes.h"
#include "kernels/colour/Grey.h"
#include "kernels/ramp/Curve.h"
#include "krlimage/film.h"

namespace krl {

namespace {

/// The place of each lane on a ramp by its luma, 0 to 1.
KRL_VECTOR_LEVELS void placesByLuma(const ColourLanes& colours, float (&places)[kBatchPixels]) {
    for (size_t i = 0; i < kBatchPixels; ++i) {
        const auto luma = static_cast<float>(lumaOf(colours.red[i], colours.green[i], colours.blue[i]));
        places[i] = static_cast<float>(luma * (1.0 / 255.0));
    }
}

/// out = in * (1 - share) + sample * share. A place within 0..1 has an index within the list.
KRL_VECTOR_LEVELS void mixWithRamp(int32_t (&lanes)[kBatchPixels], const float (&places)[kBatchPixels],
                                   const CurveSample* samples, int32_t last, double share) {
    int32_t indices[kBatchPixels], values[kBatchPixels];
    for (size_t i = 0; i < kBatchPixels; ++i) indices[i] = static_cast<int32_t>(double(last) * places[i]);
    for (size_t i = 0; i < kBatchPixels; ++i) values[i] = samples[indices[i]].value;
    const double rest = 1.0 - share;
    for (size_t i = 0; i < kBatchPixels; ++i) lanes[i] = truncatedByte(lanes[i] * rest + values[i] * share);
}

}  // namespace

/// Mixes the picture with a ramp of colours at its luma. The strength is limited to 0..1.
Status multiColourise(ImageEngine& engine, std::span<const CurveKey> colourValues, float strength) {
    if (Status state = engine.imageStatus()) return state;
    const double share = clampUnit(strength);
    const ColourCurve curve({colourValues.begin(), colourValues.end()}, 255);
    const auto mix = [&](int32_t(&lanes)[kBatchPixels], const float(&places)[kBatchPixels], size_t channel) {
        const std::span<const CurveSample> samples = curve.samples(channel);
        mixWithRamp(lanes, places, samples.data(), static_cast<int32_t>(samples.size()) - 1, share);
    };
    return forEachLaneBatch(engine, [&](ColourLanes& colours) {
        float places[kBatchPixels];
        placesByLuma(colours, places);
        mix(colours.blue, places, 0);
        mix(colours.green, places, 1);
        mix(colours.red, places, 2);
    });
}

void describeMultiColourise(Catalogue& catalogue) {
    catalogue.add("krlImageMultiColourise", multiColourise)
        .summary("Colours the picture by brightness, from a smooth ramp of colours.")
        .words("gradient map, duotone, tritone, colorize, heat, ramp")
        .colourList("colourValues", {.real = true, .scale = kLevelsPerPercent},
                    {{0, Colour(24, 18, 60)}, {50, Colour(210, 90, 60)}, {100, Colour(255, 244, 200)}},
                    "colours under brightness in percent, 0 for black")
        .real("strength", {.from = 0, .to = 1, .example = 0.7, .least = 0, .most = 1, .neutral = 0},
              "share of the ramp")
        .inputFailure("Multi Colourise input failure (Image)")
        .worksPerPixel()
        .failed("Failed Multi Colourise function (Image)");
}

}  // namespace krl
