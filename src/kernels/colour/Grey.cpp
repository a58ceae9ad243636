#include "kernels/colour/Grey.h"

#include "core/PixelWord.h"
#include "core/VectorLevels.h"

namespace krl {

KRL_STREAM_LEVELS void takeMeans(Pixel* first, Pixel* last) {
    for (Pixel* p = first; p != last; ++p) {
        const uint32_t word = wordOf(*p);  // 0xAARRGGBB
        const uint32_t mean = thirdOf((word & 255u) + (word >> 8 & 255u) + (word >> 16 & 255u));
        storeWord(*p, (word & 0xFF000000u) | mean << 16 | mean << 8 | mean);
    }
}

}  // namespace krl
