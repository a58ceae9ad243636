#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/ImageCopy.h"
#include "kernels/neighbour/Gradient3x3.h"
#include "krlimage/edges.h"

namespace krl {

/// 255 less the length of the 3 by 3 gradient.
Status sobel(ImageEngine& engine, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ChannelMask mask(target == ChannelTarget::RGB ? target : ChannelTarget::Alpha);
    if (image.width < 3 || image.height < 3)
        return forEachPixel(engine, [&](Pixel& p) { p = mask.merge(p, {255, 255, 255, 255}); });

    const ImageCopy copy(image);
    return filterInner(
        engine, copy.view(), mask,
        [](const Pixel* above, const Pixel* at, const Pixel* below, int32_t count, Pixel* fresh) {
            sobelStrengths(above, at, below, count, fresh);
            for (int32_t i = 0; i < count; ++i) {
                const Pixel p = fresh[i];
                fresh[i] = {uint8_t(~p.blue), uint8_t(~p.green), uint8_t(~p.red), uint8_t(~p.alpha)};
            }
        });
}

void describeSobel(Catalogue& catalogue) {
    catalogue.add("krlImageSobel", sobel)
        .summary("Draws edges as dark lines on white.")
        .words("outline, edges, drawing, sketch, pencil, contour")
        .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
        .inputFailure("Sobel input failure (Image)")
        .failed("Failed Sobel function (Image)");
}

}  // namespace krl
