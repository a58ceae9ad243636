#include "core/ChannelOrder.h"

#include <bit>
#include <cstring>

#include "core/VectorLevels.h"

namespace krl {

namespace {

/// Pixels are words here, since compilers make no vector loop of their bytes.
[[gnu::always_inline]] inline void exchange(const uint8_t* from, uint8_t* to, size_t count) {
    constexpr uint32_t alphaAndGreen = std::endian::native == std::endian::little ? 0xff00ff00 : 0x00ff00ff;
    for (size_t i = 0; i < count; ++i) {
        uint32_t word;
        std::memcpy(&word, from + i * sizeof word, sizeof word);
        word = (word & alphaAndGreen) | (std::rotl(word, 16) & ~alphaAndGreen);
        std::memcpy(to + i * sizeof word, &word, sizeof word);
    }
}

}  // namespace

KRL_STREAM_LEVELS void exchangeRedAndBlue(const uint8_t* from, uint8_t* to, size_t count) {
    // The vector loop over two pointers is only for memory that they do not share.
    if (from == to)
        exchange(to, to, count);
    else
        exchange(from, to, count);
}

}  // namespace krl
