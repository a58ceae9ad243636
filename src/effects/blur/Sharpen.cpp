#include "effects/blur/Sharpen.h"

#include <cstdlib>

#include "core/ImageCopy.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "effects/blur/BlurEffects.h"
#include "kernels/blend/BlendWithCopy.h"
#include "kernels/blur/ChromaImage.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/curve/EdgeGain.h"

namespace krl {

namespace {

/// What a sharp and a blurred byte become together.
template <class Gain>
uint8_t sharpened(int32_t sharp, int32_t blurred, const Gain& gain, int32_t threshold) {
    const int32_t difference = sharp - blurred;
    return gain(sharp, std::abs(2 * difference) < threshold ? 0 : difference);
}

template <class Gain>
KRL_VECTOR_LEVELS void sharpenBytes(const uint8_t* sharp, const uint8_t* blurred, Gain gain,
                                    int32_t threshold, uint8_t* out, int32_t count) {
    for (int32_t i = 0; i < count; ++i) out[i] = sharpened(sharp[i], blurred[i], gain, threshold);
}

/// Sharpens byte 2 of each word by byte 3.
template <class Gain>
KRL_VECTOR_LEVELS void sharpenLuma(Pixel* words, ptrdiff_t count, Gain gain, int32_t threshold) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(words[i]);
        const uint8_t luma = sharpened(byteAt(word, 16), byteAt(word, 24), gain, threshold);
        storeWord(words[i], (word & 0xFF00FFFFu) | uint32_t{luma} << 16);
    }
}

}  // namespace

Status sharpen(ImageEngine& engine, int32_t radius, float amount, int32_t threshold, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageCopy blurred(*engine.buffer());
    if (radius > 0) blurTarget(blurred.view(), radius, target, engine.getThreadCount());
    return withGain(amount, [&](auto gain) {
        return mixBytes(engine, blurred.row(0), target,
                        [=](const uint8_t* sharp, const uint8_t* beside, uint8_t* out, int32_t count) {
                            sharpenBytes(sharp, beside, gain, threshold, out, count);
                        });
    });
}

Status sharpenBrightness(ImageEngine& engine, int32_t radius, float amount, int32_t threshold) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ChromaImage chroma(image);
    if (Status status = chroma.split(engine)) return status;
    if (radius > 0)
        TentBlur(engine.getThreadCount()).blurAlpha(chroma.data(), image.height, image.width, radius);
    const Status status = withGain(amount, [&](auto gain) {
        return chroma.forEachWordSpan(
            engine, [=](Pixel* first, Pixel* last) { sharpenLuma(first, last - first, gain, threshold); });
    });
    return status ? status : chroma.merge(engine);
}

}  // namespace krl
