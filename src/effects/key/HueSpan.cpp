#include "effects/key/HueSpan.h"

#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "kernels/colour/HueLane.h"

namespace krl {

KRL_VECTOR_LEVELS void huesOf(const Pixel* pixels, size_t count, float greyHue, float* hues) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(pixels[i]);
        const HueLane lane = hueLane(byteAt(word, 16), byteAt(word, 8), byteAt(word, 0));
        hues[i] = lane.spread == 0.0f ? greyHue : lane.hue;
    }
}

}  // namespace krl
