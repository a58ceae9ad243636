#include "catalogue/Catalogue.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/tone.h"

namespace krl {

namespace {

/// Sums of the colour bytes. They wrap at 32 bits, as do those of a picture too large for them.
struct ColourSums {
    uint32_t blue = 0, green = 0, red = 0;
};

ColourSums sumColours(const Pixel* first, const Pixel* last) {
    ColourSums sums;
    for (const Pixel* p = first; p != last; ++p) {
        sums.blue += p->blue;
        sums.green += p->green;
        sums.red += p->red;
    }
    return sums;
}

/// out = in * level / (mean + 1). A wrapped sum can make the divisor 0, which leaves the channel as it is.
ByteCurve meanToLevel(uint32_t sum, int32_t count, int32_t level) {
    const int64_t divisor = int64_t{static_cast<int32_t>(sum)} / count + 1;
    return byteCurve([=](int32_t i) {
        if (divisor == 0) return int64_t{i};
        return clampTo<int64_t>(wrapMultiply(i, level) / divisor, 0, 255);
    });
}

}  // namespace

/// Scales each colour so that its mean comes near a level. Any level is allowed; products wrap at 32 bits.
Status mediumTones(ImageEngine& engine, int32_t level) {
    if (engine.imageStatus()) return kStatusRefused;
    const ImageBuffer& image = *engine.buffer();
    const int32_t count = wrapMultiply(image.width, image.height);
    if (count == 0) return kStatusOk;
    Pixel* first = image.row(0);
    Pixel* last = first + image.bytes() / sizeof(Pixel);
    const ColourSums sums = sumColours(first, last);
    applyCurves(first, last,
                {meanToLevel(sums.blue, count, level), meanToLevel(sums.green, count, level),
                 meanToLevel(sums.red, count, level)});
    return kStatusOk;
}

void describeMediumTones(Catalogue& catalogue) {
    catalogue.add("krlImageMediumTones", mediumTones)
        .summary("Scales each colour so that its mean comes near a level; evens out a colour cast.")
        .words("white balance, colour cast, auto, mid tones, grey world")
        .integer("level", {.from = 0, .to = 255, .example = 120}, "the mean to reach")
        .inputFailure("Medium Tones input failure (Image)")
        .failed("Failed Medium Tones function (Image)");
}

}  // namespace krl
