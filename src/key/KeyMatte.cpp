#include "key/KeyMatte.h"

#include <cstring>

#include "core/Clones.h"

namespace krl {

KRL_WIDE_CLONES void foldMattes(Pixel* pixels, const uint8_t* mattes, ptrdiff_t count, bool keep,
                                bool invert) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        uint32_t word;
        std::memcpy(&word, pixels + i, sizeof word);
        const uint8_t alpha = applyKeyMatte(static_cast<uint8_t>(word >> 24), mattes[i], keep, invert);
        word = (word & 0x00FFFFFF) | uint32_t(alpha) << 24;
        std::memcpy(pixels + i, &word, sizeof word);
    }
}

}  // namespace krl
