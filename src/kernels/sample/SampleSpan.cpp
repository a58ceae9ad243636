#include "kernels/sample/SampleSpan.h"

#include <cstring>

#include "core/PixelWord.h"
#include "core/VectorLevels.h"

namespace krl {

namespace {

/// A pixel as one word, whatever type its memory has.
using Word [[gnu::may_alias]] = uint32_t;

const Word* wordsOf(const Pixel* pixels) { return reinterpret_cast<const Word*>(pixels); }
Word* wordsOf(Pixel* pixels) { return reinterpret_cast<Word*>(pixels); }

int32_t byteOf(uint32_t word, int channel) { return static_cast<int32_t>(word >> (8 * channel) & 255); }

int32_t blend(int32_t a, int32_t b, int32_t fraction) { return a + ((fraction * (b - a)) >> 23); }

/// Pairs of neighbours. They are fetched one pair after another, which is faster than vectors that gather
/// from many places; then vectors blend them.
struct Pairs {
    uint32_t words[2 * kBatchPixels];

    void take(size_t i, const Pixel* first) { std::memcpy(words + 2 * i, first, 2 * sizeof(Pixel)); }
};

/// Where the upper left pixel of each place is. A picture of 2 GiB has fewer than 2^29.
KRL_VECTOR_LEVELS void findCorners(const AxisBatch& rows, int32_t stride, const AxisBatch& columns,
                                   size_t count, int32_t* __restrict corners) {
    for (size_t i = 0; i < count; ++i) corners[i] = rows.whole[i] * stride + columns.whole[i];
}

KRL_VECTOR_LEVELS void mixPairs(const Pairs& pairs, const int32_t* __restrict fractions, size_t count,
                                Word* __restrict blended) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t first = pairs.words[2 * i], second = pairs.words[2 * i + 1];
        uint32_t word = 0;
        for (int c = 0; c < 4; ++c)
            word |= static_cast<uint32_t>(blend(byteOf(first, c), byteOf(second, c), fractions[i]))
                    << (8 * c);
        blended[i] = word;
    }
}

KRL_VECTOR_LEVELS void mixSquares(const Pairs& upper, const Pairs& lower, const int32_t* __restrict rows,
                                  const int32_t* __restrict columns, size_t count, Word* __restrict blended) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t upperLeft = upper.words[2 * i], upperRight = upper.words[2 * i + 1];
        const uint32_t lowerLeft = lower.words[2 * i], lowerRight = lower.words[2 * i + 1];
        uint32_t word = 0;
        for (int c = 0; c < 4; ++c) {
            const int32_t left = blend(byteOf(upperLeft, c), byteOf(lowerLeft, c), rows[i]);
            const int32_t right = blend(byteOf(upperRight, c), byteOf(lowerRight, c), rows[i]);
            word |= static_cast<uint32_t>(blend(left, right, columns[i])) << (8 * c);
        }
        blended[i] = word;
    }
}

/// A place truncated and held in 0 to `last`, which a float may not hold.
int32_t heldIndex(float place, int32_t last) {
    const auto end = static_cast<float>(last);
    const auto index = static_cast<int32_t>(place > 0.0f ? (place < end ? place : end) : 0.0f);
    return index < last ? index : last;
}

}  // namespace

bool canSplitPlaces(int32_t last) { return last >= 1 && last <= 1 << 24; }

KRL_VECTOR_LEVELS bool splitPlaces(const float* __restrict places, size_t count, int32_t last,
                                   AxisBatch& axis) {
    const auto end = static_cast<float>(last);
    int32_t any = 0;
    for (size_t i = 0; i < count; ++i) {
        const bool within = (places[i] >= 0.0f) & (places[i] <= end);
        const float place = within ? places[i] : 0.0f;
        const auto floor = static_cast<int32_t>(place);
        const int32_t whole = floor < last ? floor : last - 1;
        const float fraction = (place - static_cast<float>(whole)) * 8388608.0f;
        const auto weight = static_cast<int32_t>(fraction);
        const bool isWhole = static_cast<float>(weight) == fraction;
        const int32_t doubt = (within & isWhole) ? 0 : -1;
        axis.whole[i] = whole;
        axis.fraction[i] = weight;
        axis.doubt[i] = doubt;
        any |= doubt;
    }
    return any != 0;
}

KRL_VECTOR_LEVELS void nearestPixels(const Pixel* source, int32_t stride, const float* __restrict y,
                                     const float* __restrict x, size_t count, int32_t bottom, int32_t right,
                                     Pixel* __restrict out) {
    const Word* words = wordsOf(source);
    Word* nearest = wordsOf(out);
    for (size_t i = 0; i < count; ++i)
        nearest[i] = words[heldIndex(y[i], bottom) * stride + heldIndex(x[i], right)];
}

void blendSquares(const Pixel* source, int32_t stride, const AxisBatch& rows, const AxisBatch& columns,
                  size_t count, Pixel* out) {
    int32_t corners[kBatchPixels];
    findCorners(rows, stride, columns, count, corners);
    Pairs upper, lower;
    const Pixel* below = source + stride;
    for (size_t i = 0; i < count; ++i) {
        upper.take(i, source + corners[i]);
        lower.take(i, below + corners[i]);
    }
    mixSquares(upper, lower, rows.fraction, columns.fraction, count, wordsOf(out));
}

void blendAlongRow(const Pixel* row, const AxisBatch& columns, size_t count, Pixel* out) {
    Pairs pairs;
    for (size_t i = 0; i < count; ++i) pairs.take(i, row + columns.whole[i]);
    mixPairs(pairs, columns.fraction, count, wordsOf(out));
}

void blendDownColumns(const Pixel* source, int32_t stride, const AxisBatch& rows, size_t count, Pixel* out) {
    Pairs pairs;
    for (size_t i = 0; i < count; ++i) {
        const Pixel* upper = source + ptrdiff_t(rows.whole[i]) * stride + static_cast<ptrdiff_t>(i);
        pairs.words[2 * i] = wordOf(*upper);
        pairs.words[2 * i + 1] = wordOf(upper[stride]);
    }
    mixPairs(pairs, rows.fraction, count, wordsOf(out));
}

}  // namespace krl
