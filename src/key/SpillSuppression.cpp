#include "key/SpillSuppression.h"

#include "core/Bands.h"
#include "core/LookupTables.h"

namespace krl {

namespace {

constexpr size_t kBlue = 0, kGreen = 1, kRed = 2;

/// Channel `key` limited by one other.
template <size_t key>
Pixel plainCorrection(Pixel p) {
    constexpr size_t limit = key == kBlue ? kGreen : kBlue;
    p[key] = std::min(p[key], p[limit]);
    return p;
}

/// Channel `key` limited by the mean of the others; `raised` follows it where `other` is above it.
template <size_t key>
Pixel extendedCorrection(const LookupTables& tables, Pixel p) {
    constexpr size_t raised = key == kRed ? kGreen : kRed;
    constexpr size_t other = 3 - key - raised;
    const auto mean = static_cast<uint8_t>(tables.meanOf2[p[raised] + p[other]]);
    const bool spilt = p[key] > mean;
    if (spilt && p[other] > p[raised]) p[raised] = mean;
    if (spilt) p[key] = mean;
    return p;
}

}  // namespace

Status spillSupression(ImageEngine& engine, KeyColour spillColour, bool extended, int32_t transparency) {
    if (Status state = engine.imageStatus()) return state;
    const LookupTables& tables = engine.tables();
    const uint8_t strength = clampByte(transparency);
    const uint8_t *kept = tables.scaleByte[255 - strength], *taken = tables.scaleByte[strength];
    const auto blended = [=](const Pixel& p, const Pixel& corrected) -> Pixel {
        const auto mixed = [=](uint8_t before, uint8_t after) {
            return uint8_t(kept[before] + taken[after]);
        };
        return {mixed(p.blue, corrected.blue), mixed(p.green, corrected.green), mixed(p.red, corrected.red),
                p.alpha};
    };
    return withKeyChannel(spillColour, [&](auto key) {
        if (!extended)
            return forEachPixel(engine, [=](Pixel& p) { p = blended(p, plainCorrection<key>(p)); });
        return forEachPixel(engine, [&](Pixel& p) { p = blended(p, extendedCorrection<key>(tables, p)); });
    });
}

}  // namespace krl
