#pragma once

#include <cstdint>

namespace krl {

/// Lists `count` places of a ray from (`x`, `y`) on in a picture of `width`, all of which are within, and the
/// places that they read in one that is smaller by the bits `shift`. A step is an amount of 2^-32nds.
void listPlaces(int32_t x, int32_t y, int64_t stepX, int64_t stepY, int32_t count, int32_t width,
                int32_t shift, int32_t* __restrict places, int32_t* __restrict sources);

}  // namespace krl
