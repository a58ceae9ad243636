#pragma once

#include <bit>
#include <cstdint>

#include "krlimage/pixel.h"

/// The four bytes of a pixel in four 16-bit fields of one word, so that one addition adds them all.
/// The fields hold the sum of 256 pixels.
namespace krl {

static_assert(std::endian::native == std::endian::little);

constexpr uint64_t fieldsOf(Pixel p) {
    const uint64_t word = std::bit_cast<uint32_t>(p);
    return (word | word << 24) & 0x00FF00FF00FF00FFu;
}

constexpr uint32_t blueField(uint64_t fields) { return fields & 0xFFFF; }
constexpr uint32_t redField(uint64_t fields) { return fields >> 16 & 0xFFFF; }
constexpr uint32_t greenField(uint64_t fields) { return fields >> 32 & 0xFFFF; }
constexpr uint32_t alphaField(uint64_t fields) { return static_cast<uint32_t>(fields >> 48); }

}  // namespace krl
