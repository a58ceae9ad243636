#pragma once

#include <cstdint>
#include <vector>

#include "core/LookupTables.h"
#include "krlimage/options.h"
#include "krlimage/pixel.h"
#include "krlimage/status.h"

/// The colour ramp as a picture of its own.
namespace krl {

/// How a gradient goes from key to key.
enum class GradientType : int32_t {
    linear = 30,  ///< straight lines
    curved = 31,  ///< the smooth curve, one sample list read along columns 0 to 255
};

/// Paints columns of colour into a tightly packed block that the caller owns; alpha stays as it is.
/// Key positions are columns. One key gives a flat picture, none a black one. A curved ramp does
/// not scale with the width: it reaches its last colour at column 255 and holds it from there on.
Status rgbGradient(const LookupTables& tables, Pixel* pixels, int32_t width, int32_t height,
                   std::vector<CurveKey> keys, GradientType type);

}  // namespace krl
