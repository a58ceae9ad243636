#include "composite/LightSpill.h"

#include <cstring>

#include "blur/TentBlur.h"
#include "composite/BlendRun.h"
#include "composite/Chunks.h"
#include "core/Scratch.h"

namespace krl {

namespace {

/// The image with an alpha of what the background leaves open.
Status copyWithHoles(const ImageEngine& engine, const SecondImage& background, Scratch<Pixel>& light) {
    std::memcpy(light.data(), engine.buffer()->pixels, engine.buffer()->bytes());
    return forEachRunBeside(engine, background, [&](Pixel* pixels, size_t count, const Pixel* beside) {
        Pixel* out = light.data() + (pixels - engine.buffer()->row(0));
        for (size_t i = 0; i < count; ++i) out[i].alpha = static_cast<uint8_t>(255 - beside[i].alpha);
    });
}

}  // namespace

Status lightSpillComposite(ImageEngine& engine, const SecondImage& background, int32_t blur,
                           BlendMode blendMethod) {
    if (Status state = engine.imageStatus()) return state;
    if (!engine.hasSizeOf(background)) return kStatusMaskSize;
    if (!background.pixels) return kStatusNoImage;
    const ImageBuffer& image = *engine.buffer();
    Scratch<Pixel> light(blockPixels(image));
    if (Status status = copyWithHoles(engine, background, light)) return status;
    if (blur > 0) TentBlur(engine.getThreadCount()).blurRGBA(light.data(), image.height, image.width, blur);

    const BlendRun layLight = shiftBlendRun(blendMethod), layOnImage = shiftBlendRun(BlendMode::Normal);
    return forEachRunBeside(engine, background, [&](Pixel* pixels, size_t count, const Pixel* beside) {
        const Pixel* shine = light.data() + (pixels - image.row(0));
        forEachChunk(count, [&](size_t start, size_t chunk) {
            Pixel lit[kChunkPixels];
            std::copy_n(beside + start, chunk, lit);
            layLight(lit, shine + start, chunk, engine.tables());
            layOnImage(pixels + start, lit, chunk, engine.tables());
        });
    });
}

}  // namespace krl
