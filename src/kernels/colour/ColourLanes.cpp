#include "kernels/colour/ColourLanes.h"

#include "core/VectorLevels.h"

namespace krl {

KRL_VECTOR_LEVELS void splitWords(const uint32_t (&words)[kBatchPixels], ColourLanes& colours) {
    for (size_t i = 0; i < kBatchPixels; ++i) {
        colours.blue[i] = static_cast<int32_t>(words[i] & 255u);
        colours.green[i] = static_cast<int32_t>(words[i] >> 8 & 255u);
        colours.red[i] = static_cast<int32_t>(words[i] >> 16 & 255u);
    }
}

KRL_VECTOR_LEVELS void joinWords(const ColourLanes& colours, uint32_t (&words)[kBatchPixels]) {
    for (size_t i = 0; i < kBatchPixels; ++i)
        words[i] = (words[i] & 0xFF000000u) | (static_cast<uint32_t>(colours.red[i]) & 255u) << 16 |
                   (static_cast<uint32_t>(colours.green[i]) & 255u) << 8 |
                   (static_cast<uint32_t>(colours.blue[i]) & 255u);
}

}  // namespace krl
