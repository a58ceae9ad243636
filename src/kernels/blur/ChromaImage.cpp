#include "kernels/blur/ChromaImage.h"

#include "core/ExactDivision.h"
#include "core/Numbers.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"

namespace krl {

namespace {

KRL_VECTOR_LEVELS
void splitSpan(const Pixel* from, Pixel* to, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const auto word = wordOf(from[i]);
        const int32_t blue = byteAt(word, 0), green = byteAt(word, 8), red = byteAt(word, 16);
        const int32_t luma = thousandth(114 * blue + 587 * green + 299 * red);
        const int32_t u = thousandth((blue - luma) * 565) + 128;
        const int32_t v = thousandth((red - luma) * 713) + 128;
        storeWord(to[i], static_cast<uint32_t>(u | v << 8 | luma << 16 | luma << 24));
    }
}

KRL_VECTOR_LEVELS
void mergeSpan(const Pixel* from, Pixel* to, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const auto word = wordOf(from[i]);
        const int32_t u = byteAt(word, 0) - 128, v = byteAt(word, 8) - 128, luma = byteAt(word, 16);
        const int32_t blue = clampTo(luma + thousandth(1770 * u), 0, 255);
        const int32_t green = clampTo(luma - thousandth(344 * u) - thousandth(714 * v), 0, 255);
        const int32_t red = clampTo(luma + thousandth(1403 * v), 0, 255);
        const uint32_t alpha = wordOf(to[i]) & 0xFF000000u;
        storeWord(to[i], static_cast<uint32_t>(blue | green << 8 | red << 16) | alpha);
    }
}

}  // namespace

Status ChromaImage::split(const ImageEngine& engine) const {
    return forEachSpan(engine, [&](const Pixel* first, const Pixel* last) {
        splitSpan(first, beside(engine, first), static_cast<size_t>(last - first));
    });
}

Status ChromaImage::merge(const ImageEngine& engine) const {
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        mergeSpan(beside(engine, first), first, static_cast<size_t>(last - first));
    });
}

}  // namespace krl
