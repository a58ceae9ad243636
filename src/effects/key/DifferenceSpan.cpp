#include "effects/key/DifferenceSpan.h"

#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "effects/key/KeyChannels.h"

namespace krl {

namespace {

int32_t larger(int32_t a, int32_t b) { return a > b ? a : b; }
int32_t smaller(int32_t a, int32_t b) { return a < b ? a : b; }

}  // namespace

KRL_VECTOR_LEVELS void differencesOf(const Pixel* pixels, size_t count, KeyColour colour,
                                     int16_t* differences) {
    const uint32_t key = uint32_t(channelNumber(colour)) * 8, one = (key + 8) % 24, two = (key + 16) % 24;
    for (size_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(pixels[i]);
        const int32_t other = larger(byteAt(word, one), byteAt(word, two));
        differences[i] = static_cast<int16_t>(byteAt(word, key) - other);
    }
}

KRL_VECTOR_LEVELS void chromasOf(const Pixel* pixels, size_t count, uint8_t* chromas) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(pixels[i]);
        const int32_t blue = byteAt(word, 0), green = byteAt(word, 8), red = byteAt(word, 16);
        const int32_t largest = larger(larger(blue, green), red),
                      smallest = smaller(smaller(blue, green), red);
        chromas[i] = static_cast<uint8_t>(largest - smallest);
    }
}

}  // namespace krl
