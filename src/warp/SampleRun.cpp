#include "warp/SampleRun.h"

#include "core/Clones.h"

namespace krl {

namespace {

/// A pixel as one word, whatever type its memory has.
using Word [[gnu::may_alias]] = uint32_t;

const Word* wordsOf(const Pixel* pixels) { return reinterpret_cast<const Word*>(pixels); }
Word* wordsOf(Pixel* pixels) { return reinterpret_cast<Word*>(pixels); }

int32_t byteOf(uint32_t word, int channel) { return static_cast<int32_t>(word >> (8 * channel) & 255); }

int32_t blend(int32_t a, int32_t b, int32_t fraction) { return a + ((fraction * (b - a)) >> 23); }

uint32_t blendWords(uint32_t a, uint32_t b, int32_t fraction) {
    uint32_t blended = 0;
    for (int c = 0; c < 4; ++c)
        blended |= static_cast<uint32_t>(blend(byteOf(a, c), byteOf(b, c), fraction)) << (8 * c);
    return blended;
}

/// A place truncated and held in 0 to `last`, which a float may not hold.
int32_t heldIndex(float place, int32_t last) {
    const auto end = static_cast<float>(last);
    const auto index = static_cast<int32_t>(place > 0.0f ? (place < end ? place : end) : 0.0f);
    return index < last ? index : last;
}

}  // namespace

bool canSplitPlaces(int32_t last) { return last >= 1 && last <= 1 << 24; }

KRL_WIDE_CLONES bool splitPlaces(const float* __restrict places, size_t count, int32_t last, AxisRun& axis) {
    const auto end = static_cast<float>(last);
    int32_t apart = 0;
    for (size_t i = 0; i < count; ++i) {
        const bool within = (places[i] >= 0.0f) & (places[i] <= end);
        const float place = within ? places[i] : 0.0f;
        const auto floor = static_cast<int32_t>(place);
        const int32_t whole = floor < last ? floor : last - 1;
        const float fraction = (place - static_cast<float>(whole)) * 8388608.0f;
        const auto weight = static_cast<int32_t>(fraction);
        const int32_t exact = within & (static_cast<float>(weight) == fraction) ? -1 : 0;
        axis.whole[i] = whole;
        axis.fraction[i] = weight;
        axis.exact[i] = exact;
        apart |= ~exact;
    }
    return apart == 0;
}

KRL_WIDE_CLONES void nearestPixels(const Pixel* source, int32_t stride, const float* __restrict y,
                                   const float* __restrict x, size_t count, int32_t bottom, int32_t right,
                                   Pixel* __restrict out) {
    const Word* words = wordsOf(source);
    Word* nearest = wordsOf(out);
    for (size_t i = 0; i < count; ++i)
        nearest[i] = words[heldIndex(y[i], bottom) * stride + heldIndex(x[i], right)];
}

KRL_WIDE_CLONES void blendSquares(const Pixel* source, int32_t stride, const AxisRun& rows,
                                  const AxisRun& columns, size_t count, Pixel* __restrict out) {
    const Word* words = wordsOf(source);
    Word* blended = wordsOf(out);
    for (size_t i = 0; i < count; ++i) {
        const int32_t upper = rows.whole[i] * stride + columns.whole[i], lower = upper + stride;
        const uint32_t upperLeft = words[upper], upperRight = words[upper + 1];
        const uint32_t lowerLeft = words[lower], lowerRight = words[lower + 1];
        const int32_t down = rows.fraction[i], across = columns.fraction[i];
        uint32_t word = 0;
        for (int c = 0; c < 4; ++c) {
            const int32_t left = blend(byteOf(upperLeft, c), byteOf(lowerLeft, c), down);
            const int32_t right = blend(byteOf(upperRight, c), byteOf(lowerRight, c), down);
            word |= static_cast<uint32_t>(blend(left, right, across)) << (8 * c);
        }
        blended[i] = word;
    }
}

KRL_WIDE_CLONES void blendAlongRow(const Pixel* row, const AxisRun& columns, size_t count,
                                   Pixel* __restrict out) {
    const Word* words = wordsOf(row);
    Word* blended = wordsOf(out);
    for (size_t i = 0; i < count; ++i) {
        const int32_t left = columns.whole[i];
        blended[i] = blendWords(words[left], words[left + 1], columns.fraction[i]);
    }
}

KRL_WIDE_CLONES void blendDownColumns(const Pixel* source, int32_t stride, const AxisRun& rows, size_t count,
                                      Pixel* __restrict out) {
    const Word* words = wordsOf(source);
    Word* blended = wordsOf(out);
    for (size_t i = 0; i < count; ++i) {
        const int32_t upper = rows.whole[i] * stride + static_cast<int32_t>(i);
        blended[i] = blendWords(words[upper], words[upper + stride], rows.fraction[i]);
    }
}

}  // namespace krl
