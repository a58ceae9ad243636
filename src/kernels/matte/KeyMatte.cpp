#include "kernels/matte/KeyMatte.h"

#include "core/PixelWord.h"
#include "core/VectorLevels.h"

namespace krl {

KRL_VECTOR_LEVELS void foldMattes(Pixel* pixels, const uint8_t* mattes, size_t count, bool keep,
                                  bool invert) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(pixels[i]);
        const uint8_t alpha = applyKeyMatte(static_cast<uint8_t>(word >> 24), mattes[i], keep, invert);
        storeWord(pixels[i], (word & 0x00FFFFFF) | uint32_t(alpha) << 24);
    }
}

}  // namespace krl
