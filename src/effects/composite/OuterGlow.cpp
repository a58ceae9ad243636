#include <algorithm>
#include <vector>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "kernels/blend/BlendFunction.h"
#include "kernels/blend/BlockPixels.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/curve/ByteCurve.h"
#include "kernels/curve/LevelsStretch.h"
#include "kernels/ramp/Curve.h"
#include "krlimage/composite.h"

namespace krl {

namespace {

constexpr double kLevelsPerPercentOfAlpha = 2.55;

/// The colour of each alpha by `colours`. Positions go to levels as they are: the ramp is not fitted to the
/// alphas that occur.
std::vector<RampColour> alphaRamp(std::span<const CurveKey> colours) {
    std::vector<CurveKey> keys(colours.begin(), colours.end());
    sortCurveKeys(keys);
    for (CurveKey& key : keys) {
        const auto level = static_cast<float>(key.position * kLevelsPerPercentOfAlpha);
        key.position = clampTo(level, 0.0f, 255.0f);
    }
    return linearRamp(padCurveKeys(keys, 255), 256);
}

/// Makes all four bytes of each pixel its alpha.
KRL_STREAM_LEVELS void spreadAlphas(Pixel* pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) storeWord(pixels[i], (wordOf(pixels[i]) >> 24) * 0x01010101u);
}

/// Gives all pixels of a span one colour.
KRL_STREAM_LEVELS void fillColour(Pixel* pixels, size_t count, uint32_t colour) {
    for (size_t i = 0; i < count; ++i) storeWord(pixels[i], (wordOf(pixels[i]) & 0xFF000000u) | colour);
}

/// Copies the pixels that are not quite clear.
KRL_STREAM_LEVELS void copySeen(Pixel* __restrict out, const Pixel* __restrict pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(pixels[i]), kept = wordOf(out[i]);
        storeWord(out[i], word >> 24 == 0 ? kept : word);
    }
}

/// Colours the pixels of `block`, a block of the image's geometry, by their alpha.
Status colourByAlpha(const ImageEngine& engine, uint8_t* block, std::span<const CurveKey> colours) {
    const std::vector<RampColour> ramp = alphaRamp(colours);
    const auto curve = [&](size_t channel) {
        return byteCurve([&](int32_t alpha) { return ramp[static_cast<size_t>(alpha)][channel]; });
    };
    const ColourCurves curves{curve(0), curve(1), curve(2)};
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        Pixel* pixels = reinterpret_cast<Pixel*>(block) + (first - engine.buffer()->row(0));
        forEachBatch(static_cast<size_t>(last - first), [&](size_t start, size_t count) {
            spreadAlphas(pixels + start, count);
            applyCurves(pixels + start, pixels + start + count, curves);
        });
    });
}

/// Grows the image's shape by `expandBlur` and softens it by `outerBlur`.
void spreadAlpha(ImageEngine& engine, TentBlur& tent, int32_t expandBlur, int32_t outerBlur) {
    const ImageBuffer& image = *engine.buffer();
    if (expandBlur > 0) {
        leftOutWithoutThreads(tent.blurAlpha(image.row(0), image.height, image.width, expandBlur));
        leftOutWithoutThreads(applyCurve(engine, ChannelTarget::Alpha,
                                         byteCurve([](int32_t alpha) { return alpha > 0 ? 255 : 0; })));
    }
    if (outerBlur > 0)
        leftOutWithoutThreads(tent.blurAlpha(image.row(0), image.height, image.width, outerBlur));
}

/// The colour of a part: one for all, or the pixel's own.
class PartColour {
public:
    explicit PartColour(std::span<const CurveKey> colours) : single_(colours.size() == 1) {
        if (!single_) return;
        const CurveKey& key = colours[0];
        colour_ = wordOf({clampByte(key.blue), clampByte(key.green), clampByte(key.red), 0});
    }
    void paint(Pixel* pixels, size_t count) const {
        if (single_) fillColour(pixels, count, colour_);
    }

private:
    bool single_;
    uint32_t colour_ = 0;
};

/// Lays `core` over the halo that the image has become.
void layCore(const ImageEngine& engine, const ImageCopy& core, const OuterGlowSettings& settings) {
    const ImageBuffer& image = *engine.buffer();
    const PartColour outerColour(settings.outerColours), coreColour(settings.coreColours);
    const auto& scaled = engine.tables().remainderScale[clampByte(settings.coreTransparency)];
    const ByteCurve levels = byteCurve(LevelsStretch(0, clampByte(settings.intensity)));
    const ByteCurve coreAlpha = byteCurve([&](int32_t alpha) { return scaled[alpha]; });
    const BlendFunction layOverSpan = overBlendSpan(BlendMode::Normal);
    Pixel* pixels = image.row(0);
    const Pixel* inner = core.row(0);
    forEachBatch(image.bytes() / sizeof(Pixel), [&](size_t start, size_t count) {
        Pixel halo[kBatchPixels], heart[kBatchPixels];
        std::copy_n(pixels + start, count, halo);
        outerColour.paint(halo, count);
        applyCurveTo<0, 1, 2>(halo, halo + count, levels);
        std::copy_n(inner + start, count, heart);
        coreColour.paint(heart, count);
        applyCurveTo<3>(heart, heart + count, coreAlpha);
        layOverSpan(halo, heart, count, engine.tables());
        copySeen(pixels + start, halo, count);  // what stays clear keeps its colour
    });
}

}  // namespace

/// Turns the image's alpha into a halo, grown and softened, and lays over it a core, the alpha softened. Each
/// has one colour or a ramp over alpha.
Status outerGlow(ImageEngine& engine, const OuterGlowSettings& settings) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ImageCopy core(image);
    TentBlur tent(engine);
    if (settings.coreFeather > 0)
        leftOutWithoutThreads(tent.blurAlpha(core.row(0), image.height, image.width, settings.coreFeather));
    spreadAlpha(engine, tent, settings.expandBlur, settings.outerBlur);
    if (settings.coreColours.size() >= 2)
        leftOutWithoutThreads(colourByAlpha(engine, core.view().pixels, settings.coreColours));
    if (settings.outerColours.size() >= 2)
        leftOutWithoutThreads(colourByAlpha(engine, image.pixels, settings.outerColours));
    layCore(engine, core, settings);
    return kStatusOk;
}

void describeOuterGlow(Catalogue& catalogue) {
    const auto hasEntries = [](const ArgumentValue& colours) { return !colours.keys.empty(); };
    catalogue.add("krlImageOuterGlow", outerGlow)
        .summary("Turns the picture's shape into a coloured halo with a coloured core, for titles.")
        .words("halo, neon, title, text, aura")
        .integer("core_feather", {.from = 0, .to = 50, .example = 3, .least = 0, .pixels = true},
                 "softness of the core's edge")
        .integer("expand_blur", {.from = 0, .to = 50, .example = 10, .least = 0, .pixels = true},
                 "how far the shape grows")
        .integer("outer_blur", {.from = 0, .to = 100, .example = 30, .least = 0, .pixels = true},
                 "softness of the halo")
        .colourList("outerColours", {}, {{0, Colour(120, 0, 160)}, {100, Colour(255, 170, 40)}},
                    "colours of the halo by transparency, in percent; one colour fills it")
        .mustPass(hasEntries, "Outer Glow, empty outer colour list (Image)")
        .colourList("coreColours", {}, {{100, Colour(255, 255, 240)}},
                    "colours of the core by transparency, in percent; one colour fills it")
        .mustPass(hasEntries, "Outer Glow, empty core colour list (Image)")
        .integer("intensity", {.from = 0, .to = 255, .example = 180, .least = 0, .most = 255},
                 "level at which the halo's colours are full; lower is brighter")
        .integer("core_transparency", {.from = 0, .to = 255, .example = 0, .least = 0, .most = 255},
                 "0 keeps the core whole, 255 leaves the halo alone")
        .symbol("quality", {{"standard", SampleQuality::Standard}, {"bilinear", SampleQuality::Bilinear}},
                refused("Outer Glow invalid input quality (Image)"), "makes no difference")
        .inputFailure("Outer Glow input failure (Image)")
        .failed("Failed Outer Glow function (Image)");
}

}  // namespace krl
