#include "core/VectorLevels.h"
#include "effects/key/ComponentKey.h"
#include "effects/key/KeyChannels.h"
#include "kernels/curve/ByteCurve.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

namespace {

KRL_VECTOR_LEVELS void largestChannels(const Pixel* __restrict pixels, size_t count,
                                       uint8_t* __restrict largest) {
    for (size_t i = 0; i < count; ++i) largest[i] = largestChannel(pixels[i]);
}

/// Sends `count` bytes through `curve`, four as a pixel.
void lookUp(const ByteCurve& curve, uint8_t* bytes, size_t count) {
    auto* const pixels = reinterpret_cast<Pixel*>(bytes);
    const size_t whole = count / sizeof(Pixel);
    applyCurveTo<0, 1, 2, 3>(pixels, pixels + whole, curve);
    for (size_t i = whole * sizeof(Pixel); i < count; ++i) bytes[i] = curve[bytes[i]];
}

}  // namespace

/// Keys on the distance of a pixel's value, the largest of its channels, from that of `pColor`:
/// `|value - pick| / dynamicRange` is 0 on the key and 1 off it.
Status valueKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white,
                bool keep, bool invert) {
    if (Status state = engine.imageStatus()) return state;
    const LookupTables& tables = engine.tables();
    const UnitRamp ramp(hsvOf(tables, pColor).value, dynamicRange, black, white);
    const ByteCurve mattes =
        byteCurve([&](int32_t value) { return ramp.matte(tables.unitFromByte[size_t(value)]); });
    return keyEachSpan(engine, keep, invert, [&](const Pixel* pixels, size_t count, uint8_t* into) {
        largestChannels(pixels, count, into);
        lookUp(mattes, into, count);
    });
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
