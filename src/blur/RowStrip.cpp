#include "blur/RowStrip.h"

#include <cstddef>
#include <cstring>

namespace krl::tent {

namespace {

constexpr ptrdiff_t kPixelBytes = 4;
constexpr int32_t kSide = 4;  ///< of the squares of pixels that are turned in vectors

using Quad [[gnu::vector_size(16)]] = uint32_t;

Quad load(const uint8_t* pixels) {
    Quad quad;
    std::memcpy(&quad, pixels, sizeof quad);
    return quad;
}

void turnSquare(const uint8_t* from, ptrdiff_t fromPitch, uint8_t* to, ptrdiff_t toPitch) {
    const Quad a = load(from), b = load(from + fromPitch), c = load(from + 2 * fromPitch),
               d = load(from + 3 * fromPitch);
    const Quad abLeft = __builtin_shufflevector(a, b, 0, 4, 1, 5),
               abRight = __builtin_shufflevector(a, b, 2, 6, 3, 7),
               cdLeft = __builtin_shufflevector(c, d, 0, 4, 1, 5),
               cdRight = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    const Quad turned[kSide] = {__builtin_shufflevector(abLeft, cdLeft, 0, 1, 4, 5),
                                __builtin_shufflevector(abLeft, cdLeft, 2, 3, 6, 7),
                                __builtin_shufflevector(abRight, cdRight, 0, 1, 4, 5),
                                __builtin_shufflevector(abRight, cdRight, 2, 3, 6, 7)};
    for (int32_t i = 0; i < kSide; ++i) std::memcpy(to + i * toPitch, &turned[i], sizeof turned[i]);
}

/// Turns `lines` lines of `length` pixels, `fromPitch` bytes apart, into `length` lines `toPitch` apart.
void turn(const uint8_t* from, ptrdiff_t fromPitch, int32_t lines, int32_t length, uint8_t* to,
          ptrdiff_t toPitch) {
    const int32_t squareLines = lines - lines % kSide, squareLength = length - length % kSide;
    for (int32_t i = 0; i < squareLength; i += kSide)
        for (int32_t line = 0; line < squareLines; line += kSide)
            turnSquare(from + line * fromPitch + i * kPixelBytes, fromPitch,
                       to + i * toPitch + line * kPixelBytes, toPitch);
    for (int32_t line = 0; line < lines; ++line)
        for (int32_t i = line < squareLines ? squareLength : 0; i < length; ++i)
            std::memcpy(to + i * toPitch + line * kPixelBytes, from + line * fromPitch + i * kPixelBytes,
                        kPixelBytes);
}

}  // namespace

void layOnSide(const uint8_t* rows, int32_t rowCount, int32_t width, uint8_t* strip) {
    const ptrdiff_t pitch = width * kPixelBytes;
    turn(rows, pitch, rowCount, width, strip, kStripLanes);
    for (int32_t row = rowCount; row < kStripRows; ++row)
        turn(rows + (rowCount - 1) * pitch, pitch, 1, width, strip + row * kPixelBytes, kStripLanes);
}

void setUpright(const uint8_t* strip, int32_t count, uint8_t* rows, int32_t rowCount, int32_t width) {
    turn(strip, kStripLanes, count, rowCount, rows, width * kPixelBytes);
}

}  // namespace krl::tent
