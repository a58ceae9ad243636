#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "kernels/blend/BlendMode.h"
#include "kernels/ramp/Curve.h"
#include "krlimage/generate.h"

/// What the elements of a lens flare are painted with. Nothing here knows what a flare looks like; the look
/// comes from the choice of elements.
///
/// Every element works out a value from 0 to 255 for each pixel that it covers. The value is at once the
/// element's brightness there and the place on its colour ramp, so the far end of a ramp shows where the
/// element is brightest. `FlarePlot` turns values into pixels.
namespace krl {

/// The picture of one call, the engine whose bands paint it, and the colours of the element that is being
/// painted.
struct FlareState {
    ImageBuffer image;  ///< no pixels where no image is loaded
    const LookupTables* tables = nullptr;
    const ImageEngine* engine = nullptr;  ///< none where no image is loaded

    std::vector<CurveKey> colourKeys;
    std::array<std::vector<CurveSample>, 3> samples;  ///< by channel; empty below two colours
    std::array<int32_t, 3> sampleStep{};              ///< samples of each channel over 256

    Pixel& pixel(int32_t x, int32_t y) const { return image.row(y)[x]; }
    /// Colour of the ramp where each channel's sample is `indexOf(channel)`; white without colours.
    template <class IndexOf>
    Pixel rampColour(IndexOf&& indexOf) const {
        if (colourKeys.empty()) return {255, 255, 255, 255};
        const auto byte = [&](size_t channel) {
            if (colourKeys.size() == 1)
                return clampByte(colourKeys[0].channel(static_cast<int32_t>(channel)));
            const auto last = static_cast<int32_t>(samples[channel].size()) - 1;
            return clampByte(samples[channel][static_cast<size_t>(clampTo(indexOf(channel), 0, last))].value);
        };
        return {byte(0), byte(1), byte(2), 255};
    }
};

/// Paints the values of one element into the picture: colour by value, less the transparency, blended in
/// straight alpha.
class FlarePlot {
public:
    FlarePlot(const FlareState& state, const FlareElement& element);

    /// Paints `value` at `pixel`. Values that the transparency uses up paint nothing.
    void operator()(Pixel& pixel, int32_t value) const {
        const int32_t alpha = wrapSubtract(value, transparency_);
        if (alpha <= 0) return;
        Pixel front = ramp_[clampByte(value)];
        front.alpha = clampByte(alpha);
        layOver(pixel, front, blend_, tables_);
    }

    /// Whether a value of 0 leaves the picture as it is.
    bool zeroIsNothing() const { return transparency_ >= 0; }

private:
    const LookupTables& tables_;
    const BlendMode blend_;
    const int32_t transparency_;
    std::array<Pixel, 256> ramp_;
};

/// The picture that elements are painted into, one after another.
class FlareCanvas {
public:
    /// Without a picture: elements are accepted and not painted.
    FlareCanvas() = default;
    /// The engine's picture, if one is loaded, painted with the engine's bands.
    explicit FlareCanvas(const ImageEngine& engine);

    /// Paints one element. If a required task or thread cannot be created, the element stays unfinished.
    void draw(const FlareElement& element);

    /// With the colours of the last element.
    const FlareState& state() const { return state_; }

private:
    void takeColours(const std::vector<CurveKey>& keys);

    FlareState state_;
};

}  // namespace krl
