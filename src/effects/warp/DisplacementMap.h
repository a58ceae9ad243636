#pragma once

#include "krlimage/engine.h"

namespace krl {

/// What of a displacement map's pixel is read as its value, 0 to 255.
enum class MapOption : int32_t {
    SameAsMapOne = 34,  ///< the first map's value; for the second map alone
    Off = 35,           ///< 128 everywhere, which is next to no shift
    Red = 36,
    Green = 37,
    Blue = 38,
    Alpha = 39,  ///< halved
    Greyscale = 40,
    Luminosity = 41,
    Hue = 42,
    Saturation = 43,  ///< halved
    Lightness = 44,
};

/// Where a shift beyond the picture leads. Beside the waves' words these two stand the other way round.
enum class MapEdge : int32_t {
    Wrap = 24,    ///< to the picture's edge
    Repeat = 25,  ///< into the picture again, by whole widths and heights
};

/// Moves each pixel by what two maps of the image's own size say: across by the first, up and down by the
/// second, by up to half of `hDistance` and `vDistance`. Bright values read from the right and from above,
/// dark ones from the left and below; a map's alpha scales its own shift. Samples bilinearly, all four bytes.
Status displacementMapComposite(ImageEngine& engine, const SecondImage& dMapOne, MapOption colouringOptionOne,
                                const SecondImage& dMapTwo, MapOption colouringOptionTwo, float hDistance,
                                float vDistance, MapEdge edgeOption);

}  // namespace krl
