#include "composite/OuterGlow.h"

#include <array>
#include <vector>

#include "blur/TentBlur.h"
#include "composite/BlendRun.h"
#include "composite/Chunks.h"
#include "core/ImageCopy.h"
#include "generate/Curve.h"

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

/// Colours the pixels of `block`, a block of the image's geometry, by their alpha.
Status colourByAlpha(const ImageEngine& engine, uint8_t* block, std::span<const CurveKey> colours) {
    const std::vector<RampColour> ramp = alphaRamp(colours);
    return forEachPixelRun(engine, [&](Pixel* first, Pixel* last) {
        Pixel* pixels = reinterpret_cast<Pixel*>(block) + (first - engine.buffer()->row(0));
        for (ptrdiff_t i = 0; i < last - first; ++i) {
            const auto& [blue, green, red] = ramp[pixels[i].alpha];
            pixels[i] = {static_cast<uint8_t>(blue), static_cast<uint8_t>(green), static_cast<uint8_t>(red),
                         pixels[i].alpha};
        }
    });
}

/// Grows the image's shape by `expandBlur` and softens it by `outerBlur`.
void spreadAlpha(const ImageEngine& engine, TentBlur& tent, int32_t expandBlur, int32_t outerBlur) {
    const ImageBuffer& image = *engine.buffer();
    if (expandBlur > 0) {
        tent.blurAlpha(image.row(0), image.height, image.width, expandBlur);
        forEachPixel(engine, [](Pixel& p) { p.alpha = p.alpha > 0 ? 255 : 0; });
    }
    if (outerBlur > 0) tent.blurAlpha(image.row(0), image.height, image.width, outerBlur);
}

/// Where a part has its colour from: one colour for all, or the pixel's own.
class PartColour {
public:
    explicit PartColour(std::span<const CurveKey> colours) : single_(colours.size() == 1) {
        if (!single_) return;
        const CurveKey& key = colours[0];
        colour_ = {clampByte(key.blue), clampByte(key.green), clampByte(key.red), 0};
    }
    Pixel of(Pixel pixel) const { return single_ ? colour_ : pixel; }

private:
    bool single_;
    Pixel colour_{};
};

std::array<uint8_t, 256> glowLevels(int32_t intensity) {
    const auto slope = static_cast<float>(256.0 / (intensity + 1));
    std::array<uint8_t, 256> levels{};
    for (int32_t i = 0; i < 256; ++i)
        levels[static_cast<size_t>(i)] =
            i > intensity ? 255 : static_cast<uint8_t>(truncate(i * static_cast<double>(slope)));
    return levels;
}

/// Lays `core` over the halo that the image has become.
void layCore(const ImageEngine& engine, const ImageCopy& core, PartColour outerColour, PartColour coreColour,
             int32_t intensity, int32_t coreTransparency) {
    const ImageBuffer& image = *engine.buffer();
    const auto levels = glowLevels(clampByte(intensity));
    const auto& coreAlpha = engine.tables().remainderScale[clampByte(coreTransparency)];
    const BlendRun layOverRun = overBlendRun(BlendMode::Normal);
    Pixel* pixels = image.row(0);
    const Pixel* inner = core.row(0);
    forEachChunk(image.bytes() / sizeof(Pixel), [&](size_t start, size_t count) {
        Pixel halo[kChunkPixels], heart[kChunkPixels];
        for (size_t i = 0; i < count; ++i) {
            const Pixel behind = pixels[start + i], front = inner[start + i];
            const Pixel glow = outerColour.of(behind), middle = coreColour.of(front);
            halo[i] = {levels[glow.blue], levels[glow.green], levels[glow.red], behind.alpha};
            heart[i] = {middle.blue, middle.green, middle.red, static_cast<uint8_t>(coreAlpha[front.alpha])};
        }
        layOverRun(halo, heart, count, engine.tables());
        for (size_t i = 0; i < count; ++i)  // what stays clear keeps its colour
            if (halo[i].alpha != 0) pixels[start + i] = halo[i];
    });
}

}  // namespace

Status outerGlow(ImageEngine& engine, int32_t coreFeather, int32_t expandBlur, int32_t outerBlur,
                 std::span<const CurveKey> outerColours, std::span<const CurveKey> coreColours,
                 int32_t intensity, int32_t coreTransparency, SampleQuality) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ImageCopy core(image);
    TentBlur tent(engine.getThreadCount());
    if (coreFeather > 0) tent.blurAlpha(core.row(0), image.height, image.width, coreFeather);
    spreadAlpha(engine, tent, expandBlur, outerBlur);
    // A colouring that has no threads leaves its part as it was, and the glow goes on.
    if (coreColours.size() >= 2) colourByAlpha(engine, core.view().pixels, coreColours);
    if (outerColours.size() >= 2) colourByAlpha(engine, image.pixels, outerColours);
    layCore(engine, core, PartColour(outerColours), PartColour(coreColours), intensity, coreTransparency);
    return kStatusOk;
}

}  // namespace krl
