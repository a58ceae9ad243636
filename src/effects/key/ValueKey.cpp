#include <array>

#include "effects/key/ComponentKey.h"
#include "effects/key/KeyChannels.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

/// Keys on the distance of a pixel's value, the largest of its channels, from that of `pColor`:
/// `|value - pick| / dynamicRange` is 0 on the key and 1 off it.
Status valueKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white,
                bool keep, bool invert) {
    if (Status state = engine.imageStatus()) return state;
    const LookupTables& tables = engine.tables();
    const UnitRamp ramp(hsvOf(tables, pColor).value, dynamicRange, black, white);
    std::array<uint8_t, 256> mattes;
    for (size_t value = 0; value < mattes.size(); ++value)
        mattes[value] = ramp.matte(tables.unitFromByte[value]);
    return keyEachPixel(engine, keep, invert, [&](const Pixel& p) { return mattes[largestChannel(p)]; });
}

void describeValueKey(Catalogue& catalogue) {
    describeComponentKey(catalogue.add("krlImageValueKey", valueKey),
                         {.summary = "Keys on how bright a colour is.",
                          .searchWords = "luma key, brightness, matte, cut out, luminance",
                          .pickMeaning = "colour whose brightness is keyed",
                          .rangeMeaning = "reach to either side, 1.0 being all",
                          .rangeExample = 0.4,
                          .badKeepRemove = "Value Key invalid input keep_remove option (Image)",
                          .badInvert = "Value Key invalid input invert option (Image)",
                          .inputFailure = "Value Key input failure (Image)",
                          .failed = "Failed Value Key function (Image)"});
}

}  // namespace krl
