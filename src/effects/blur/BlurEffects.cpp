#include "effects/blur/BlurEffects.h"

#include "core/ImageCopy.h"
#include "core/Numbers.h"
#include "core/VectorLevels.h"
#include "kernels/blend/BlendWithCopy.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/curve/ByteCurve.h"
#include "kernels/curve/EdgeGain.h"

namespace krl {

namespace {

/// A mix of a blurred byte and the sharp one an edge away, in real numbers.
struct RealShares {
    double sharpShare, softShare;

    uint8_t operator()(int32_t soft, int32_t edge) const {
        return truncatedByte((soft + edge) * sharpShare + soft * softShare);
    }
};

/// Makes each byte of its blur and the edge between both.
template <class Gain>
KRL_VECTOR_LEVELS void diffuseBytes(const uint8_t* soft, const uint8_t* sharp, Gain gain, uint8_t* out,
                                    int32_t count) {
    for (int32_t i = 0; i < count; ++i) out[i] = gain(soft[i], sharp[i] - soft[i]);
}

}  // namespace

void blurTarget(const ImageBuffer& block, int32_t radius, ChannelTarget target, int32_t threadCount) {
    TentBlur blur(threadCount);
    switch (target) {
        case ChannelTarget::RGBA:
            return blur.blurRGBA(block.row(0), block.height, block.width, radius);
        case ChannelTarget::RGB:
            return blur.blurRGB(block.row(0), block.height, block.width, radius);
        default:
            return blur.blurAlpha(block.row(0), block.height, block.width, radius);
    }
}

Status fastGaussianBlur(ImageEngine& engine, int32_t radius, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    if (radius <= 0) return kStatusOk;
    const ImageBuffer& image = *engine.buffer();
    if (target == ChannelTarget::Single) {
        TentBlur(engine.getThreadCount()).blurSingle(image.row(0), image.height, image.width, radius);
    } else {
        blurTarget(image, radius, target, engine.getThreadCount());
    }
    return kStatusOk;
}

Status blurProRGB(ImageEngine& engine, int32_t blurR, int32_t blurG, int32_t blurB) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    TentBlur blur(engine.getThreadCount());
    const int32_t radii[] = {blurB, blurG, blurR};
    Status status = kStatusOk;
    for (int32_t channel = 2; channel >= 0 && status == kStatusOk; --channel)
        status = blur.blurChannel(image.row(0), image.height, image.width, radii[channel], channel);
    return status;
}

Status defocus(ImageEngine& engine, int32_t blur, float bloom, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const auto rest = static_cast<float>(1.0 - static_cast<float>(clampTo<double>(bloom, 0.0, 0.8)));
    const ByteCurve lift = byteCurve([=](int32_t i) { return truncatedByte(i / 255.0 / rest * 255.0); });
    const ChannelTarget blurred = target == ChannelTarget::RGBA ? target : ChannelTarget::RGB;
    if (blur > 0) blurTarget(*engine.buffer(), blur, blurred, engine.getThreadCount());
    return applyCurve(engine, ChannelTarget::RGB, lift);
}

Status diffuse(ImageEngine& engine, int32_t blur, float opacity, SampleQuality, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageCopy sharp(*engine.buffer());
    if (blur > 0) blurTarget(*engine.buffer(), blur, target, engine.getThreadCount());
    const auto mix = [&](auto gain) {
        return mixBytes(engine, sharp.row(0), target,
                        [=](const uint8_t* soft, const uint8_t* beside, uint8_t* out, int32_t count) {
                            diffuseBytes(soft, beside, gain, out, count);
                        });
    };
    const double share = clampUnit(opacity);
    // Where there is a whole gain, all of the mix is exact, and so is the same told as a move from the blur.
    const std::optional<WholeGain> whole = wholeGain(static_cast<float>(share));
    return whole ? mix(*whole) : mix(RealShares{share, 1.0 - share});
}

Status oneChannelFeather(ImageEngine& engine, int32_t radius, SampleQuality) {
    if (Status state = engine.imageStatus()) return state;
    blurTarget(*engine.buffer(), radius, ChannelTarget::Alpha, engine.getThreadCount());
    return kStatusOk;
}

Status blurColourReplace(ImageEngine& engine, Colour colour) {
    if (engine.imageStatus()) return kStatusRefused;
    const auto scaledBy = [](uint8_t level) {
        const auto share = static_cast<float>(level / 255.0);
        return byteCurve([=](int32_t i) { return truncatedByte(share * (i / 255.0) * 255.0); });
    };
    const ImageBuffer& image = *engine.buffer();
    applyCurves(image.row(0), image.row(0) + image.bytes() / sizeof(Pixel),
                {scaledBy(colour.blue()), scaledBy(colour.green()), scaledBy(colour.red())});
    return kStatusOk;
}

}  // namespace krl
