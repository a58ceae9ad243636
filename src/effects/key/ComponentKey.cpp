#include "effects/key/ComponentKey.h"

#include <cmath>

#include "core/Numbers.h"
#include "effects/key/KeyChoices.h"

namespace krl {

Hsv hsvOf(const LookupTables& tables, Colour colour) {
    const float* unit = tables.unitFromByte;
    return rgbToHsv(unit[colour.red()], unit[colour.green()], unit[colour.blue()]);
}

Softness::Softness(int32_t black, int32_t white)
    : black_(clampByte(black)), slope_(static_cast<float>(256.0 / (clampByte(white) - black_ + 1))) {}

uint8_t Softness::matte(double distance) const {
    return clampByte(truncate(std::round((distance - black_) * slope_)));
}

UnitRamp::UnitRamp(float pick, float dynamicRange, int32_t black, int32_t white)
    : softness_(black, white), pick_(pick), range_(clampTo(dynamicRange, 0.0f, 1.0f)) {
    const float below = pick_ - range_, above = pick_ + range_;
    low_ = below < 0.0f ? 0.0f : below;
    high_ = above > 1.0f ? 1.0f : above;
}

uint8_t UnitRamp::matte(float x) const {
    const float distance = low_ <= x && x <= high_ ? std::fabs((x - pick_) / range_) : 1.0f;
    return softness_.matte(clampByte(truncate(distance * 255.0)));
}

void describeComponentKey(Method& entry, const ComponentKeyWords& words) {
    entry.summary(words.summary)
        .words(words.searchWords)
        .colour("pColor", Colour(45, 170, 80), words.pickMeaning)
        .real("dynamicRange", {.from = 0, .to = 1, .example = words.rangeExample, .least = 0, .most = 1},
              words.rangeMeaning)
        .integer("black", {.from = 0, .to = 255, .example = 60, .least = 0, .most = 255},
                 "level of distance up to which all is on the key")
        .integer("white", {.from = 0, .to = 255, .example = 200, .least = 0, .most = 255},
                 "level of distance from which all is off it")
        .symbol("keepRemove", keepOrRemove(), refused(words.badKeepRemove), kKeepMeaning)
        .thenCompare()
        .symbol("invert", invertOrNot(), refused(words.badInvert), kInvertKeyMeaning)
        .inputFailure(words.inputFailure)
        .worksPerPixel()
        .failed(words.failed);
}

}  // namespace krl
