#pragma once

#include <cstddef>
#include <cstdint>

namespace krl {

/// One pixel, four bytes in address order; colour is not premultiplied by alpha.
struct Pixel {
    uint8_t blue, green, red, alpha;

    /// Byte by channel number: 0 blue, 1 green, 2 red, 3 alpha.
    uint8_t& operator[](size_t channel) { return reinterpret_cast<uint8_t*>(this)[channel]; }
    uint8_t operator[](size_t channel) const { return reinterpret_cast<const uint8_t*>(this)[channel]; }

    bool operator==(const Pixel&) const = default;
};
static_assert(sizeof(Pixel) == 4);

/// A run of pixels as its bytes.
inline uint8_t* firstByte(Pixel* pixels) { return reinterpret_cast<uint8_t*>(pixels); }
inline const uint8_t* firstByte(const Pixel* pixels) { return reinterpret_cast<const uint8_t*>(pixels); }

/// Which bytes of a pixel an effect works on. The numbers are part of the program's one numbering
/// of options.
enum class ChannelTarget : int32_t {
    RGBA = 4,    ///< all four bytes
    RGB = 5,     ///< the colour bytes, alpha left as it was
    Alpha = 6,   ///< alpha alone
    Single = 7,  ///< byte 0 alone; only the fast Gaussian blur offers it
};

/// A colour as scripts pass it: one word, red in the low byte.
struct Colour {
    uint32_t word = 0;

    constexpr Colour() = default;
    constexpr explicit Colour(uint32_t packed) : word(packed) {}
    constexpr Colour(uint8_t r, uint8_t g, uint8_t b)
        : word(uint32_t(r) | uint32_t(g) << 8 | uint32_t(b) << 16) {}

    constexpr uint8_t red() const { return static_cast<uint8_t>(word); }
    constexpr uint8_t green() const { return static_cast<uint8_t>(word >> 8); }
    constexpr uint8_t blue() const { return static_cast<uint8_t>(word >> 16); }
};

/// A place in the picture, row word first as the host writes it.
struct Point {
    int32_t y = 0;  ///< row
    int32_t x = 0;  ///< column
};
static_assert(sizeof(Point) == 8);

}  // namespace krl
