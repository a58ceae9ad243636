#include "blur/Sharpen.h"

#include <cstdlib>
#include <vector>

#include "blur/BlurEffects.h"
#include "blur/ByteMix.h"
#include "blur/ChromaImage.h"
#include "blur/TentBlur.h"
#include "core/ImageCopy.h"
#include "core/Numbers.h"

namespace krl {

namespace {

/// What a sharp and a blurred byte become together.
class ContrastTable {
public:
    ContrastTable(float amount, int32_t threshold) : entries_(256 * 256) {
        for (int32_t sharp = 0; sharp < 256; ++sharp) {
            for (int32_t blurred = 0; blurred < 256; ++blurred) {
                const int32_t twice = std::abs(2 * (sharp - blurred));
                const double difference = twice < threshold ? 0 : sharp - blurred;
                entries_[size_t(sharp * 256 + blurred)] = truncatedByte(sharp + difference * amount);
            }
        }
    }

    uint8_t operator()(uint8_t sharp, uint8_t blurred) const {
        return entries_[size_t(sharp) * 256 + blurred];
    }

private:
    std::vector<uint8_t> entries_;
};

}  // namespace

Status sharpen(ImageEngine& engine, int32_t radius, float amount, int32_t threshold, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageCopy blurred(*engine.buffer());
    if (radius > 0) blurTarget(blurred.view(), radius, target, engine.getThreadCount());
    return mixBytes(engine, blurred.row(0), target, ContrastTable(amount, threshold));
}

Status sharpenBrightness(ImageEngine& engine, int32_t radius, float amount, int32_t threshold) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ChromaImage chroma(image);
    const ContrastTable contrast(amount, threshold);
    if (Status status = chroma.split(engine)) return status;
    if (radius > 0)
        TentBlur(engine.getThreadCount()).blurAlpha(chroma.data(), image.height, image.width, radius);
    const Status status =
        chroma.forEachWord(engine, [&](Pixel& word) { word.red = contrast(word.red, word.alpha); });
    return status ? status : chroma.merge(engine);
}

}  // namespace krl
