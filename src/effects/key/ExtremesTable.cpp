#include "effects/key/ExtremesTable.h"

#include <algorithm>
#include <array>

#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

namespace {

/// The place of each pixel in the table.
KRL_VECTOR_LEVELS void placesOf(const Pixel* pixels, size_t count, uint16_t* places) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(pixels[i]);
        const int32_t blue = byteAt(word, 0), green = byteAt(word, 8), red = byteAt(word, 16);
        const int32_t max = std::max(std::max(blue, green), red), min = std::min(std::min(blue, green), red);
        places[i] = static_cast<uint16_t>(max << 8 | min);
    }
}

}  // namespace

void ExtremesTable::mattesOf(const Pixel* pixels, size_t count, uint8_t* mattes) const {
    std::array<uint16_t, kBatchPixels> places;
    placesOf(pixels, count, places.data());
    const uint8_t* table = mattes_.data();
    for (size_t i = 0; i < count; ++i) mattes[i] = table[places[i]];
}

}  // namespace krl
