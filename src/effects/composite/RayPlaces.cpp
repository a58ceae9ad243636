#include "effects/composite/RayPlaces.h"

#include "core/VectorLevels.h"

namespace krl {

KRL_VECTOR_LEVELS
void listPlaces(int32_t x, int32_t y, int64_t stepX, int64_t stepY, int32_t count, int32_t width,
                int32_t shift, int32_t* __restrict places, int32_t* __restrict sources) {
    // Truncated toward the ray's beginning: forward downward, backward upward.
    const int64_t upX = stepX < 0 ? 0xFFFFFFFF : 0, upY = stepY < 0 ? 0xFFFFFFFF : 0;
    for (int32_t s = 0; s < count; ++s) {
        const int32_t column = x + static_cast<int32_t>((stepX * s + upX) >> 32);
        const int32_t row = y + static_cast<int32_t>((stepY * s + upY) >> 32);
        places[s] = row * width + column;
        sources[s] = (row >> shift) * (width >> shift) + (column >> shift);
    }
}

}  // namespace krl
