#pragma once

#include <cstdint>

#include "krlimage/engine.h"

namespace krl {

/// What becomes of every hue and of every lightness; saturation stays.
struct HlsChange {
    int32_t hues[362];  ///< by hue + 1, as the hue of a grey is -1
    int32_t lightnesses[361];

    int32_t& hue(int32_t from) { return hues[from + 1]; }
    int32_t hue(int32_t from) const { return hues[from + 1]; }
};

/// The change that leaves every hue and lightness as it is.
HlsChange unchangedHls();

/// The change of every hue to `newHue(hue)`, -1 for greys among them.
template <class NewHue>
HlsChange hueChange(NewHue&& newHue) {
    HlsChange change = unchangedHls();
    for (int32_t hue = -1; hue <= 360; ++hue) change.hue(hue) = newHue(hue);
    return change;
}

/// A hue argument within one turn; the remainder of a negative one is negative.
constexpr int32_t withinTurn(int32_t hue) { return hue > 360 || hue < 0 ? hue % 360 : hue; }

/// `hue` turned by `by` degrees, the sum brought back by one turn at most.
int32_t turnedHue(int32_t hue, int32_t by);

/// Makes the change to every pixel of the loaded picture, in bands.
Status recolourByHls(ImageEngine& engine, const HlsChange& change);

/// The same, mixed with the picture by `density` percent.
Status recolourByHls(ImageEngine& engine, const HlsChange& change, int32_t density);

}  // namespace krl
