#pragma once

#include <algorithm>
#include <span>

#include "krlimage/fields.h"

/// What splitting and joining of interleaved parts have in common.
namespace krl {

/// Calls `move(partPixel, wholePixel)` for every pixel of every whole block of factor by factor pixels, in
/// the order of the rows: pixel i of a block, counted row by row, belongs to part i.
template <class Part, class Whole, class Move>
void forEachPartPixel(std::span<const Part> parts, const Whole& whole, Move&& move) {
    const int32_t factor = broadcastFactor(int32_t(parts.size()));
    const ImageInfo& size = parts.front().info;
    for (int32_t y = 0; y < size.height * factor; ++y)
        for (int32_t column = 0; column < factor; ++column) {
            auto* partPixel = parts[size_t(y % factor) * size_t(factor) + size_t(column)].row(y / factor);
            auto* wholePixel = whole.row(y) + column;
            for (int32_t x = 0; x < size.width; ++x) move(partPixel[x], wholePixel[ptrdiff_t(x) * factor]);
        }
}

inline bool isPartCount(size_t count) { return count == 4 || count == 16; }

inline bool hasSize(const ImageInfo& info, const ImageInfo& expected) {
    return info.width == expected.width && info.height == expected.height;
}

/// Whether every part has pixels and the size of `expected`.
template <class Part>
bool areParts(std::span<const Part> parts, const ImageInfo& expected) {
    return std::ranges::all_of(parts,
                               [&](const Part& part) { return part.pixels && hasSize(part.info, expected); });
}

/// A picture of rows without padding.
inline ImageInfo unpaddedInfo(int32_t width, int32_t height) {
    return {.width = width, .height = height, .rowBytes = width * int32_t(sizeof(Pixel))};
}

}  // namespace krl
