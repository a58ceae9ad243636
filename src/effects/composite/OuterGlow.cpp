#include <algorithm>
#include <vector>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/PixelWord.h"
#include "core/Scratch.h"
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

/// Alpha of each of `count` pixels.
KRL_STREAM_LEVELS void readAlphas(uint8_t* __restrict alphas, const Pixel* __restrict pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) alphas[i] = static_cast<uint8_t>(wordOf(pixels[i]) >> 24);
}

/// Makes all that is not clear opaque.
KRL_STREAM_LEVELS void fillAlphas(uint8_t* alphas, size_t count) {
    for (size_t i = 0; i < count; ++i) alphas[i] = alphas[i] > 0 ? 255 : 0;
}

/// Pixels of `alphas` in the colours of `pixels`.
KRL_STREAM_LEVELS void joinAlphas(Pixel* __restrict out, const Pixel* __restrict pixels,
                                  const uint8_t* __restrict alphas, size_t count) {
    for (size_t i = 0; i < count; ++i)
        storeWord(out[i], (wordOf(pixels[i]) & 0x00FFFFFFu) | uint32_t{alphas[i]} << 24);
}

/// Pixels of which all four bytes are their alpha.
KRL_STREAM_LEVELS void spreadAlphas(Pixel* __restrict out, const uint8_t* __restrict alphas, size_t count) {
    for (size_t i = 0; i < count; ++i) storeWord(out[i], alphas[i] * 0x01010101u);
}

/// Gives all pixels of a span one colour.
KRL_STREAM_LEVELS void fillColour(Pixel* pixels, size_t count, uint32_t colour) {
    for (size_t i = 0; i < count; ++i) storeWord(pixels[i], (wordOf(pixels[i]) & 0xFF000000u) | colour);
}

/// Pixels of `laid`, or of `below` where those are clear.
KRL_STREAM_LEVELS void copySeen(Pixel* __restrict out, const Pixel* __restrict laid,
                                const Pixel* __restrict below, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(laid[i]), kept = wordOf(below[i]);
        storeWord(out[i], word >> 24 == 0 ? kept : word);
    }
}

/// The alphas of the image's block as they become those of a part.
class PartAlphas {
public:
    PartAlphas(const ImageEngine& engine, TentBlur& tent)
        : engine_(engine), tent_(tent), alphas_(blockPixels(*engine.buffer())) {}

    void copy(const PartAlphas& other) {
        std::copy(other.alphas_.begin(), other.alphas_.end(), alphas_.begin());
    }
    void read() {
        const ImageBuffer& image = *engine_.buffer();
        readAlphas(alphas_.data(), image.row(0), image.bytes() / sizeof(Pixel));
    }
    void soften(int32_t radius) {
        const ImageBuffer& image = *engine_.buffer();
        leftOutWithoutThreads(tent_.blurBytes(alphas_.data(), image.height, image.width, radius));
    }
    void fill() {
        const Pixel* const origin = engine_.buffer()->row(0);
        leftOutWithoutThreads(forEachSpan(engine_, [&](Pixel* first, Pixel* last) {
            fillAlphas(at(first - origin), static_cast<size_t>(last - first));
        }));
    }
    uint8_t* at(ptrdiff_t pixel) const { return alphas_.data() + pixel; }

private:
    const ImageEngine& engine_;
    TentBlur& tent_;
    Scratch<uint8_t> alphas_;
};

/// The colour of a part: one for all, that of each alpha on a ramp, or the pixel's own.
class PartColour {
public:
    explicit PartColour(std::span<const CurveKey> colours)
        : isSingle_(colours.size() == 1), hasRamp_(colours.size() >= 2) {
        if (isSingle_) {
            const CurveKey& key = colours[0];
            colour_ = wordOf({clampByte(key.blue), clampByte(key.green), clampByte(key.red), 0});
        }
        if (!hasRamp_) return;
        const std::vector<RampColour> ramp = alphaRamp(colours);
        const auto curve = [&](size_t channel) {
            return byteCurve([&](int32_t alpha) { return ramp[static_cast<size_t>(alpha)][channel]; });
        };
        curves_ = {curve(0), curve(1), curve(2)};
    }

    /// Makes pixels of their alphas and their own colours, or those on the ramp if `isRamped`.
    void shade(Pixel* out, const Pixel* own, const uint8_t* alphas, size_t count, bool isRamped) const {
        if (!hasRamp_ || !isRamped) return joinAlphas(out, own, alphas, count);
        spreadAlphas(out, alphas, count);
        applyCurves(out, out + count, curves_);
    }
    /// Gives pixels the one colour if there is one.
    void paint(Pixel* pixels, size_t count) const {
        if (isSingle_) fillColour(pixels, count, colour_);
    }

private:
    bool isSingle_, hasRamp_;
    uint32_t colour_ = 0;
    ColourCurves curves_{};
};

/// Lays `core` over `halo`, both alphas, into the image.
void layCore(const ImageEngine& engine, const PartAlphas& core, const PartAlphas& halo,
             const OuterGlowSettings& settings) {
    const ImageBuffer& image = *engine.buffer();
    const PartColour haloColour(settings.outerColours), coreColour(settings.coreColours);
    const auto& scaled = engine.tables().remainderScale[clampByte(settings.coreTransparency)];
    const ByteCurve levels = byteCurve(LevelsStretch(0, clampByte(settings.intensity)));
    const ByteCurve coreAlpha = byteCurve([&](int32_t alpha) { return scaled[alpha]; });
    const BlendFunction layOverSpan = overBlendSpan(BlendMode::Normal);
    const auto lay = [&](ptrdiff_t first, ptrdiff_t last, bool isRamped) {
        forEachBatch(static_cast<size_t>(std::max<ptrdiff_t>(last - first, 0)),
                     [&](size_t start, size_t count) {
                         const ptrdiff_t at = first + static_cast<ptrdiff_t>(start);
                         Pixel* const pixels = image.row(0) + at;
                         Pixel below[kBatchPixels], glow[kBatchPixels], heart[kBatchPixels];
                         haloColour.shade(below, pixels, halo.at(at), count, isRamped);
                         std::copy_n(below, count, glow);
                         haloColour.paint(glow, count);
                         applyCurveTo<0, 1, 2>(glow, glow + count, levels);
                         coreColour.shade(heart, pixels, core.at(at), count, isRamped);
                         coreColour.paint(heart, count);
                         applyCurveTo<3>(heart, heart + count, coreAlpha);
                         layOverSpan(glow, heart, count, engine.tables());
                         copySeen(pixels, glow, below, count);  // what stays clear keeps its colour
                     });
    };
    // Ramps colour what bands of pixels reach, which may not be the whole block.
    const ptrdiff_t pixels = static_cast<ptrdiff_t>(image.bytes() / sizeof(Pixel));
    const int32_t bands = engine.getThreadCount();
    const ptrdiff_t reached = std::min<ptrdiff_t>(pixelBand(engine, bands, bands - 1).last, pixels);
    lay(0, reached, true);
    lay(reached, pixels, false);
}

}  // namespace

/// Turns the image's alpha into a halo, grown and softened, and lays over it a core, the alpha softened. Each
/// has one colour or a ramp over alpha.
Status outerGlow(ImageEngine& engine, const OuterGlowSettings& settings) {
    if (Status state = engine.imageStatus()) return state;
    TentBlur tent(engine);
    PartAlphas core(engine, tent), halo(engine, tent);
    core.read();
    halo.copy(core);
    core.soften(settings.coreFeather);
    if (settings.expandBlur > 0) {
        halo.soften(settings.expandBlur);
        halo.fill();
    }
    halo.soften(settings.outerBlur);
    layCore(engine, core, halo, settings);
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
