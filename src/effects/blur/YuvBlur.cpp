#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "effects/blur/BlurChoices.h"
#include "kernels/blur/ChromaBox.h"
#include "kernels/blur/ChromaImage.h"
#include "kernels/blur/TentBlur.h"
#include "krlimage/blur.h"

namespace krl {

namespace {

Status blurChromaBytes(Pixel* words, const ImageEngine& engine, ChromaBlurType blurType, int32_t blurAmount) {
    const int32_t height = engine.buffer()->height, width = engine.buffer()->width;
    switch (blurType) {
        case ChromaBlurType::Horizontal:
            return boxChromaRows(engine, words, height, width, blurAmount);
        case ChromaBlurType::Vertical:
            return boxChromaColumns(engine, words, height, width, blurAmount);
        case ChromaBlurType::Box:
            if (Status status = boxChromaRows(engine, words, height, width, blurAmount)) return status;
            return boxChromaColumns(engine, words, height, width, blurAmount);
        case ChromaBlurType::Gaussian:
            leftOutWithoutThreads(TentBlur(engine).blurChroma(words, height, width, blurAmount));
            break;
    }
    return kStatusOk;
}

}  // namespace

/// A box or tent blur on the colour differences; luma stays sharp.
Status yuvBlur(ImageEngine& engine, ChromaBlurType blurType, int32_t blurAmount) {
    if (Status state = engine.imageStatus()) return state;
    const ChromaImage chroma(*engine.buffer());
    if (Status status = chroma.split(engine)) return status;
    if (blurAmount > 0)
        if (Status status = blurChromaBytes(chroma.data(), engine, blurType, blurAmount)) return status;
    return chroma.merge(engine);
}

void describeYuvBlur(Catalogue& catalogue) {
    catalogue.add("krlImageYUVBlur", yuvBlur)
        .summary("Softens colour and keeps brightness sharp, as against colour noise.")
        .words("noise reduction, chroma, denoise, soften")
        .symbol("blurType",
                {{"yuv_horizontal", ChromaBlurType::Horizontal},
                 {"yuv_vertical", ChromaBlurType::Vertical},
                 {"yuv_box", ChromaBlurType::Box},
                 {"yuv_gaussian", ChromaBlurType::Gaussian}},
                refused("YUVBlur invalid input blur type (Image)"),
                "along rows, down columns, both, or a softer window")
        .showing("yuv_gaussian")
        .integer("blurAmount", kRadius, "pixels to each side; 0 or less blurs nothing")
        .inputFailure("YUVBlur input failure (Image)")
        .failed("Failed YUVBlur function (Image)")
        .dependsOnBands();
}

}  // namespace krl
