#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "effects/blur/BlurChoices.h"
#include "kernels/blur/TentBlur.h"
#include "krlimage/blur.h"

namespace krl {

/// The tent blur on a choice of bytes.
Status fastGaussianBlur(ImageEngine& engine, int32_t radius, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    TentBlur blur(engine);
    if (target == ChannelTarget::Single)
        leftOutWithoutThreads(blur.blurSingle(image.row(0), image.height, image.width, radius));
    else
        leftOutWithoutThreads(blur.blurTarget(image.row(0), image.height, image.width, radius, target));
    return kStatusOk;
}

void describeFastGaussianBlur(Catalogue& catalogue) {
    catalogue.add("krlImageFastGaussianBlur", fastGaussianBlur)
        .summary("Softens the picture; a wide blur costs no more than a narrow one.")
        .words("soften, smooth, gaussian, defocus")
        .integer("radius", kNeutralRadius, kRadiusMeaning)
        .symbol("colourOrAlpha",
                {{"RGBA", ChannelTarget::RGBA},
                 {"RGB", ChannelTarget::RGB},
                 {"Alpha", ChannelTarget::Alpha},
                 {"Single", ChannelTarget::Single}},
                otherwise(ChannelTarget::Single),
                "colours and transparency, colours, transparency, or blue alone; any other symbol "
                "is taken as blue alone")
        .inputFailure("Fast Gaussian Blur input failure (Image)")
        .failed("Failed Fast Gaussian Blur function (Image)");
}

}  // namespace krl
