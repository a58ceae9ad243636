#pragma once

#include "catalogue/Catalogue.h"
#include "core/LookupTables.h"
#include "kernels/colour/ColourSpace.h"
#include "krlimage/key.h"

/// What the keys on one component of a picked colour share.
namespace krl {

/// The components of the picked colour.
Hsv hsvOf(const LookupTables& tables, Colour colour);

/// How a distance from the picked component, 255 at the range's end, becomes a matte: 0 up to `black`, 255
/// from `white` on.
class Softness {
public:
    Softness(int32_t black, int32_t white);

    uint8_t matte(double distance) const;

private:
    int32_t black_;
    float slope_;
};

/// The matte of a saturation or value by its distance from the picked one.
class UnitRamp {
public:
    UnitRamp(float pick, float dynamicRange, int32_t black, int32_t white);

    uint8_t matte(float x) const;

private:
    Softness softness_;
    float pick_, range_, low_ = 0, high_ = 0;
};

/// The words of one such key, in which alone the entries differ.
struct ComponentKeyWords {
    const char* summary;
    const char* searchWords;
    const char* pickMeaning;
    const char* rangeMeaning;
    double rangeExample;
    const char *badKeepRemove, *badInvert, *inputFailure, *failed;
};

/// Completes the entry of such a key.
void describeComponentKey(Method& entry, const ComponentKeyWords& words);

}  // namespace krl
