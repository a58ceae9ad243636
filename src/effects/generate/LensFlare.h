#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "kernels/blend/BlendMode.h"
#include "kernels/ramp/Curve.h"
#include "krlimage/engine.h"

/// The lens flare: a list of described elements painted one after another into the loaded image. Nothing
/// here knows what a flare looks like; the look comes from the choice of elements.
///
/// Every element works out a value from 0 to 255 for each pixel that it covers. The value is at once the
/// element's brightness there and the place on its colour ramp, so the far end of a ramp shows where the
/// element is brightest. `FlarePlot` turns values into pixels.
namespace krl {

/// The kinds of element. The circles' numbers are the program's own.
enum class FlareKind : int32_t {
    Polyshape,    ///< a regular polygon, grown and softened: a ghost of the aperture
    RandomFan,    ///< diameters scattered over an angle
    Spike,        ///< rays scattered all around
    Star,         ///< evenly spaced arms
    Line,         ///< a bar with a dome across and along it
    StarCaustic,  ///< a bar that tapers along its angle and is sharp across it
    ChromaHoop,   ///< rays between two circles, coloured along their length
    FilledCircle = 45,
    GradientCircle = 46,
    OutlinedCircle = 47,
    FadedCircle = 48,  ///< an outlined circle that pales away from the picture's centre
};

/// One element's settings; each kind looks only at those that it has.
struct FlareElement {
    FlareKind kind = FlareKind::FilledCircle;
    Point origin{};                       ///< the middle of the element
    Point handle{};                       ///< `ChromaHoop`: where the hoop slides from, the source of light
    float brightness = 255;               ///< 0..255
    int32_t transparency = 0;             ///< subtracted from every value
    BlendMode blend = BlendMode::Normal;  ///< `Normal`, `Add` or `Screen`

    float radius = 0;
    float angle = 0;       ///< degrees
    int32_t count = 0;     ///< corners, rays or arms
    int32_t width = 0;     ///< `Star`: neighbouring rays of an arm, one degree apart
    int32_t aperture = 0;  ///< `RandomFan`: degrees
    int32_t seed = 0;

    int32_t expandShape = 0;  ///< `Polyshape`: blur by which the shape grows
    int32_t shapeBlur = 0;    ///< `Polyshape`: blur of its edge

    float outerFeather = 0, innerFeather = 0;      ///< circles: width of the soft edges
    float outerThickness = 0, innerThickness = 0;  ///< outlined circles: width of the flat ring to each side

    float length = 0, thickness = 0;  ///< bars

    float position = 0;         ///< `ChromaHoop`: its centre on the way from `handle` to `origin`
    float softness = 0;         ///< `ChromaHoop`: how near the inner circle comes to the outer
    float density = 0;          ///< `ChromaHoop`: angle between rays, as a part of `arcCompleteness`
    float noise = 0;            ///< `ChromaHoop`: jitter of the rays
    float arcCompleteness = 0;  ///< `ChromaHoop`: 1 is the whole ring
    float apogeeScale = 0, chromaSpread = 0;  ///< `ChromaHoop`: accepted and without effect
};

/// What one call works with: the picture, and the colours of the element at hand.
struct FlareState {
    ImageBuffer image;  ///< no pixels where no image is loaded
    const LookupTables* tables = nullptr;
    int32_t threadCount = 1;

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

/// Lays the values of one element into the picture: colour by value, less the transparency, blended in
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

/// The scene of one call: give it the picture, then for each element its colours and its settings.
class FlareCanvas {
public:
    explicit FlareCanvas(int32_t threadCount) { state_.threadCount = threadCount < 1 ? 1 : threadCount; }
    /// With the engine's bands, tables and image; with no image, elements are accepted and not painted.
    explicit FlareCanvas(const ImageEngine& engine);

    void setImage(uint8_t* pixels, const ImageInfo& info, const LookupTables* tables);

    /// Takes the element's colours, at 0..255 along its values and in the order of the list, and draws
    /// their ramp if they are two or more.
    void setColours(std::vector<CurveKey> keys);
    void releaseColours();

    /// Paints one element in the colours that are set. Bands that cannot be had leave it unfinished.
    void draw(const FlareElement& element) const;

    const FlareState& state() const { return state_; }

private:
    void buildCurves();

    FlareState state_;
};

}  // namespace krl
