#include "kernels/blur/TransposedRows.h"

#include <cstring>
#include <utility>

#include "core/VectorLevels.h"

namespace krl::tent {

namespace {

constexpr int32_t kVectorBytes = 16;

/// A line of a square of elements that is turned in vectors.
template <int32_t elementBytes>
struct Turning;

template <>
struct Turning<4> {
    using Line [[gnu::vector_size(kVectorBytes)]] = uint32_t;
    static Line firstHalves(Line a, Line b) { return __builtin_shufflevector(a, b, 0, 4, 1, 5); }
    static Line lastHalves(Line a, Line b) { return __builtin_shufflevector(a, b, 2, 6, 3, 7); }
};

template <>
struct Turning<1> {
    using Line [[gnu::vector_size(kVectorBytes)]] = uint8_t;
    static Line firstHalves(Line a, Line b) {
        return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
    }
    static Line lastHalves(Line a, Line b) {
        return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
    }
};

/// Turns a square of as many lines as a vector has elements, by shuffling its halves like cards until every
/// element has moved from column to line.
template <int32_t elementBytes>
void turnSquare(const uint8_t* from, ptrdiff_t fromPitch, uint8_t* to, ptrdiff_t toPitch) {
    using Vectors = Turning<elementBytes>;
    constexpr int32_t kSide = kVectorBytes / elementBytes;
    typename Vectors::Line lines[kSide], shuffled[kSide];
    for (int32_t i = 0; i < kSide; ++i) std::memcpy(&lines[i], from + i * fromPitch, kVectorBytes);
    for (int32_t moved = 1; moved < kSide; moved *= 2) {
        for (int32_t i = 0; i < kSide / 2; ++i) {
            shuffled[2 * i] = Vectors::firstHalves(lines[i], lines[i + kSide / 2]);
            shuffled[2 * i + 1] = Vectors::lastHalves(lines[i], lines[i + kSide / 2]);
        }
        std::swap(lines, shuffled);
    }
    for (int32_t i = 0; i < kSide; ++i) std::memcpy(to + i * toPitch, &lines[i], kVectorBytes);
}

/// Turns `lines` lines of `length` elements, `fromPitch` bytes apart, into `length` lines `toPitch` apart.
template <int32_t elementBytes>
void turn(const uint8_t* from, ptrdiff_t fromPitch, int32_t lines, int32_t length, uint8_t* to,
          ptrdiff_t toPitch) {
    constexpr int32_t kSide = kVectorBytes / elementBytes;
    const int32_t squareLines = lines - lines % kSide, squareLength = length - length % kSide;
    for (int32_t i = 0; i < squareLength; i += kSide)
        for (int32_t line = 0; line < squareLines; line += kSide)
            turnSquare<elementBytes>(from + line * fromPitch + i * elementBytes, fromPitch,
                                     to + i * toPitch + line * elementBytes, toPitch);
    for (int32_t line = 0; line < lines; ++line)
        for (int32_t i = line < squareLines ? squareLength : 0; i < length; ++i)
            std::memcpy(to + i * toPitch + line * elementBytes, from + line * fromPitch + i * elementBytes,
                        elementBytes);
}

}  // namespace

template <int32_t elementBytes>
void transpose(const uint8_t* rows, int32_t rowCount, int32_t width, uint8_t* columns) {
    const ptrdiff_t pitch = ptrdiff_t(width) * elementBytes;
    turn<elementBytes>(rows, pitch, rowCount, width, columns, kTransposedLanes);
    for (int32_t row = rowCount; row < transposedRows(elementBytes); ++row)
        turn<elementBytes>(rows + (rowCount - 1) * pitch, pitch, 1, width, columns + row * elementBytes,
                           kTransposedLanes);
}

template <int32_t elementBytes>
void transposeBack(const uint8_t* columns, int32_t count, uint8_t* rows, int32_t rowCount, int32_t width) {
    turn<elementBytes>(columns, kTransposedLanes, count, rowCount, rows, ptrdiff_t(width) * elementBytes);
}

template void transpose<1>(const uint8_t*, int32_t, int32_t, uint8_t*);
template void transpose<4>(const uint8_t*, int32_t, int32_t, uint8_t*);
template void transposeBack<1>(const uint8_t*, int32_t, uint8_t*, int32_t, int32_t);
template void transposeBack<4>(const uint8_t*, int32_t, uint8_t*, int32_t, int32_t);

KRL_STREAM_LEVELS
void gatherChannel(const uint8_t* words, int32_t channel, ptrdiff_t count, uint8_t* __restrict bytes) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        uint32_t word;
        std::memcpy(&word, words + 4 * i, sizeof word);
        bytes[i] = static_cast<uint8_t>(word >> (8 * channel));
    }
}

}  // namespace krl::tent
