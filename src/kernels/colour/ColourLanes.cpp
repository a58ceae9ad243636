#include "kernels/colour/ColourLanes.h"

#include "core/VectorLevels.h"

namespace krl {

KRL_VECTOR_LEVELS void partWords(const uint32_t (&words)[kBlockPixels], ColourLanes& block) {
    for (size_t i = 0; i < kBlockPixels; ++i) {
        block.blue[i] = static_cast<int32_t>(words[i] & 255u);
        block.green[i] = static_cast<int32_t>(words[i] >> 8 & 255u);
        block.red[i] = static_cast<int32_t>(words[i] >> 16 & 255u);
    }
}

KRL_VECTOR_LEVELS void joinWords(const ColourLanes& block, uint32_t (&words)[kBlockPixels]) {
    for (size_t i = 0; i < kBlockPixels; ++i)
        words[i] = (words[i] & 0xFF000000u) | (static_cast<uint32_t>(block.red[i]) & 255u) << 16 |
                   (static_cast<uint32_t>(block.green[i]) & 255u) << 8 |
                   (static_cast<uint32_t>(block.blue[i]) & 255u);
}

}  // namespace krl
