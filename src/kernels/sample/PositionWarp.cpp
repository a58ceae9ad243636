#include "kernels/sample/PositionWarp.h"

#include "core/VectorLevels.h"

namespace krl {

KRL_VECTOR_LEVELS void holdInside(float* places, size_t count, int32_t length) {
    for (size_t i = 0; i < count; ++i) places[i] = heldInside(places[i], length);
}

}  // namespace krl
