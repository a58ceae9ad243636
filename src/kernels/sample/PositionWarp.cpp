#include "kernels/sample/PositionWarp.h"

#include "core/Clones.h"

namespace krl {

KRL_WIDE_CLONES void holdInside(float* places, size_t count, int32_t length) {
    for (size_t i = 0; i < count; ++i) places[i] = heldInside(places[i], length);
}

}  // namespace krl
