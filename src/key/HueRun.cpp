#include "key/HueRun.h"

#include "core/Clones.h"
#include "core/PixelWord.h"

namespace krl {

namespace {

/// `level / 255` as `unitFromByte` holds it, without the division: the head of 1 / 255 has so few
/// bits that its product is exact, and the tail's error is below the last rounding's.
float unitFromLevel(int32_t level) {
    constexpr float kHead = 0x1.01p-8f, kTail = static_cast<float>(1.0 / 255.0 - 0x1.01p-8);
    const auto whole = static_cast<float>(level);
    return whole * kHead + whole * kTail;
}

float larger(float a, float b) { return a > b ? a : b; }
float smaller(float a, float b) { return a < b ? a : b; }

}  // namespace

KRL_WIDE_CLONES void huesOf(const Pixel* pixels, ptrdiff_t count, float greyHue, float* hues) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(pixels[i]);
        const float blue = unitFromLevel(byteAt(word, 0));
        const float green = unitFromLevel(byteAt(word, 8));
        const float red = unitFromLevel(byteAt(word, 16));
        const float max = larger(larger(red, green), blue), min = smaller(smaller(red, green), blue);
        const float delta = max - min;

        // A grey divides by zero here; what comes of it is not taken.
        float across = red - green, sector = 4.0f;
        across = green == max ? blue - red : across;
        sector = green == max ? 2.0f : sector;
        across = red == max ? green - blue : across;
        sector = red == max ? 0.0f : sector;
        const float hue = (across / delta + sector) * 60.0f;
        const float turned = hue < 0.0f ? hue + 360.0f : hue;
        hues[i] = delta == 0.0f ? greyHue : turned;
    }
}

}  // namespace krl
