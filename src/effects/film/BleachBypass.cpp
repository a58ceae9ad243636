#include "catalogue/Catalogue.h"
#include "core/LookupTables.h"
#include "core/VectorLevels.h"
#include "effects/film/PairTable.h"
#include "effects/film/Saturate.h"
#include "kernels/colour/Grey.h"
#include "kernels/curve/Contrast.h"
#include "krlimage/film.h"

namespace krl {

namespace {

/// out = opacity * overlay(silver(mean), in) + (255 - opacity) * in, in 255ths; silver is a contrast curve.
PairTable silverPrint(const LookupTables& tables, int32_t opacity, float contrast) {
    const ByteCurve silver = contrastCurve(clampTo(contrast, 0.0f, 2.0f));
    const auto &laid = tables.scaleByte[opacity], &kept = tables.scaleByte[255 - opacity];
    return PairTable([&](int32_t mean, int32_t byte) {
        return laid[tables.blendOverlay[silver[size_t(mean)]][byte]] + kept[byte];
    });
}

KRL_VECTOR_LEVELS void meansOf(const ColourLanes& colours, int32_t (&means)[kBatchPixels]) {
    for (size_t i = 0; i < kBatchPixels; ++i)
        means[i] = static_cast<int32_t>(
            thirdOf(static_cast<uint32_t>(colours.blue[i] + colours.green[i] + colours.red[i])));
}

/// Looks up each lane in the row of the print that its mean selects.
void printLanes(int32_t (&lanes)[kBatchPixels], const PairTable& print,
                const int32_t (&means)[kBatchPixels]) {
    const uint8_t* entries = print.data();
    for (size_t i = 0; i < kBatchPixels; ++i) lanes[i] = entries[means[i] << 8 | lanes[i]];
}

}  // namespace

/// Overlays the picture with its own mean under contrast, then scales saturation. Opacity is limited to
/// 0..255, the two factors to 0..2.
Status bleachBypass(ImageEngine& engine, int32_t opacity, float contrast, float saturation) {
    if (Status state = engine.imageStatus()) return state;
    const PairTable print = silverPrint(engine.tables(), clampTo(opacity, 0, 255), contrast);
    const float colourfulness = saturationFactor(saturation);
    return forEachLaneBatch(engine, [&](ColourLanes& colours) {
        int32_t means[kBatchPixels];
        meansOf(colours, means);
        printLanes(colours.blue, print, means);
        printLanes(colours.green, print, means);
        printLanes(colours.red, print, means);
        if (colourfulness != 1.0f) saturate(colours, colourfulness);
    });
}

void describeBleachBypass(Catalogue& catalogue) {
    catalogue.add("krlImageBleachBypass", bleachBypass)
        .summary("Leaves silver in the print: hard contrast over muted colour.")
        .words("film, silver, gritty, muted, war, contrast")
        .integer("opacity", {.from = 0, .to = 255, .example = 200, .least = 0, .most = 255},
                 "how strongly the silver shows")
        .real("contrast", {.from = 0, .to = 2, .example = 1.2, .least = 0, .most = 2},
              "contrast of the silver")
        .real("saturation", {.from = 0, .to = 2, .example = 0.6, .least = 0, .most = 2},
              "factor on colourfulness")
        .inputFailure("Bleach Bypass input failure (Image)")
        .worksPerPixel()
        .failed("Failed Bleach Bypass function (Image)");
}

}  // namespace krl
