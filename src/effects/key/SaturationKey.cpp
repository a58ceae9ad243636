#include "core/Bands.h"
#include "effects/key/ComponentKey.h"
#include "effects/key/ExtremesTable.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

/// Keys on the distance of a pixel's saturation from that of `pColor`: `|saturation - pick| / dynamicRange`
/// is 0 on the key and 1 off it.
Status saturationKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white,
                     bool keep, bool invert) {
    if (engine.imageStatus()) return kStatusRefused;
    const UnitRamp ramp(hsvOf(engine.tables(), pColor).saturation, dynamicRange, black, white);
    const ExtremesTable table(engine.tables(),
                              [&](const Hsv& colour) { return ramp.matte(colour.saturation); });
    return runSpansHere(engine, [&](Pixel* first, Pixel* last) {
        keySpan(first, last, keep, invert, [&](const Pixel* pixels, size_t count, uint8_t* mattes) {
            table.mattesOf(pixels, count, mattes);
        });
    });
}

void describeSaturationKey(Catalogue& catalogue) {
    describeComponentKey(catalogue.add("krlImageSaturationKey", saturationKey),
                         {.summary = "Keys on how saturated a colour is.",
                          .searchWords = "select, matte, cut out, grey",
                          .pickMeaning = "colour whose saturation is keyed",
                          .rangeMeaning = "reach to either side, 1.0 being all",
                          .rangeExample = 0.4,
                          .badKeepRemove = "Saturation Key invalid input keep_remove option (Image)",
                          .badInvert = "Saturation Key invalid input invert option (Image)",
                          .inputFailure = "Saturation Key input failure (Image)",
                          .failed = "Failed Saturation Key function (Image)"});
}

}  // namespace krl
