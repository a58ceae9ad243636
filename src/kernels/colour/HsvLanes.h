#pragma once

#include "kernels/colour/ColourLanes.h"

namespace krl {

/// The hue space of a batch of pixels: the position of each hue on its circle of six sectors, and
/// saturation and value on 0..1.
struct HsvLanes {
    float turn[kBatchPixels];  ///< hue / 60, within 0..6; 0 for a grey
    float saturation[kBatchPixels], value[kBatchPixels];
};

/// The same numbers as `rgbToHsv` gives for each pixel, without a branch.
void toHsv(const ColourLanes& colours, HsvLanes& hsv);

/// The same bytes as `hsvToRgb` gives, without a branch. Saturation and value lie within 0..1 or
/// are NaN. Channels are rounded by adding `half`; with 0 they are truncated.
void fromHsv(const HsvLanes& hsv, ColourLanes& colours, double half = 0.5);

/// Takes every pixel through its saturation and value: `change(saturation, value)` rewrites both,
/// which must then lie within 0..1 or be NaN.
template <class Change>
Status recolourByHsv(const ImageEngine& engine, Change&& change) {
    return forEachLaneBatch(engine, [&](ColourLanes& colours) {
        HsvLanes hsv;
        toHsv(colours, hsv);
        for (size_t i = 0; i < kBatchPixels; ++i) change(hsv.saturation[i], hsv.value[i]);
        fromHsv(hsv, colours);
    });
}

}  // namespace krl
