#include "effects/colour/MixLanes.h"

#include "core/VectorLevels.h"

namespace krl {

KRL_VECTOR_LEVELS void mixLanes(int32_t (&from)[kBatchPixels], const int32_t (&to)[kBatchPixels],
                                int32_t opacity) {
    for (size_t i = 0; i < kBatchPixels; ++i)
        from[i] = wrapAdd(from[i], wrapMultiply(to[i] - from[i], opacity) >> 8);
}

}  // namespace krl
