#include "effects/blur/ChromaBlur.h"

#include "kernels/blur/ChromaBox.h"
#include "kernels/blur/ChromaImage.h"
#include "kernels/blur/TentBlur.h"

namespace krl {

namespace {

Status blurChromaBytes(Pixel* words, const ImageEngine& engine, ChromaBlurType blurType, int32_t blurAmount) {
    const int32_t height = engine.buffer()->height, width = engine.buffer()->width;
    const int32_t threads = engine.getThreadCount();
    switch (blurType) {
        case ChromaBlurType::Horizontal:
            return boxChromaRows(words, height, width, blurAmount, threads);
        case ChromaBlurType::Vertical:
            return boxChromaColumns(words, height, width, blurAmount, threads);
        case ChromaBlurType::Box:
            if (Status status = boxChromaRows(words, height, width, blurAmount, threads)) return status;
            return boxChromaColumns(words, height, width, blurAmount, threads);
        case ChromaBlurType::Gaussian:
            TentBlur(threads).blurChroma(words, height, width, blurAmount);
            break;
    }
    return kStatusOk;
}

}  // namespace

Status blurProYUV(ImageEngine& engine, int32_t blurY, int32_t blurU, int32_t blurV) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ChromaImage chroma(image);
    if (Status status = chroma.split(engine)) return status;
    TentBlur blur(engine.getThreadCount());
    const int32_t radii[] = {blurU, blurV, blurY};
    for (int32_t channel = 0; channel < 3; ++channel)
        blur.blurChannel(chroma.data(), image.height, image.width, radii[channel], channel);
    return chroma.merge(engine);
}

Status yuvBlur(ImageEngine& engine, ChromaBlurType blurType, int32_t blurAmount) {
    if (Status state = engine.imageStatus()) return state;
    const ChromaImage chroma(*engine.buffer());
    if (Status status = chroma.split(engine)) return status;
    if (blurAmount > 0)
        if (Status status = blurChromaBytes(chroma.data(), engine, blurType, blurAmount)) return status;
    return chroma.merge(engine);
}

}  // namespace krl
