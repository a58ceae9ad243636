#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "core/Numbers.h"
#include "core/VectorLevels.h"
#include "effects/blur/BlurChoices.h"
#include "kernels/blend/BlendWithCopy.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/curve/EdgeGain.h"
#include "krlimage/blur.h"

namespace krl {

namespace {

/// The equation: `opacity` of the sharp byte and the rest of the blurred one, which is `edge` less.
struct RealShares {
    double opacity, rest;

    uint8_t operator()(int32_t soft, int32_t edge) const {
        return truncatedByte((soft + edge) * opacity + soft * rest);
    }
};

/// Makes each byte of its blur and the edge between both.
template <class Gain>
KRL_VECTOR_LEVELS void diffuseBytes(const uint8_t* soft, const uint8_t* sharp, Gain gain, uint8_t* out,
                                    int32_t count) {
    for (int32_t i = 0; i < count; ++i) out[i] = gain(soft[i], sharp[i] - soft[i]);
}

}  // namespace

/// The sharp picture over its blur.
Status diffuse(ImageEngine& engine, int32_t blur, float opacity, SampleQuality, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ImageCopy sharp(image);
    leftOutWithoutThreads(TentBlur(engine).blurTarget(image.row(0), image.height, image.width, blur, target));
    const auto mix = [&](auto gain) {
        return mixBytes(engine, sharp.row(0), target,
                        [=](const uint8_t* soft, const uint8_t* beside, uint8_t* out, int32_t count) {
                            diffuseBytes(soft, beside, gain, out, count);
                        });
    };
    const double share = clampUnit(opacity);
    // Where there is a whole gain the mix is exact, and the same as a move from the blur by `share` of the
    // edge.
    const std::optional<WholeGain> whole = wholeGain(static_cast<float>(share));
    return whole ? mix(*whole) : mix(RealShares{share, 1.0 - share});
}

void describeDiffuse(Catalogue& catalogue) {
    catalogue.add("krlImageDiffuse", diffuse)
        .summary("Lays the sharp picture over its blur, as a soft-focus filter does.")
        .words("soft focus, glow, dream, mist, filter, bloom, haze")
        .integer("blur", kRadius, kRadiusMeaning)
        .real("opacity", {.from = 0, .to = 1, .example = 0.5, .least = 0, .most = 1, .neutral = 1},
              "share of the sharp picture")
        .symbol("quality",
                {{"standard", SampleQuality::Standard}, {"antialiased", SampleQuality::Antialiased}},
                refused("Diffuse invalid input quality (Image)"), "either gives the same picture")
        .symbol("colourOrAlpha",
                {{"rgba", ChannelTarget::RGBA}, {"rgb", ChannelTarget::RGB}, {"alpha", ChannelTarget::Alpha}},
                refused("Diffuse invalid input colourOrAlpha (Image)"),
                "colours and transparency, colours, or transparency alone")
        .inputFailure("Diffuse input failure (Image)")
        .failed("Failed Diffuse function (Image)");
}

}  // namespace krl
