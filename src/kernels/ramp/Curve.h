#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "core/Numbers.h"
#include "krlimage/options.h"

/// The one colour-ramp machine: a few colours at places on a line become a dense ramp, along
/// straight lines or along a smooth curve.
///
/// The curve of a channel is drawn in the plane of position and value, not as a function of
/// position, and its samples are read by their index along the list.
namespace krl {

/// One point of a sampled curve; the value is not limited to a byte.
struct CurveSample {
    int32_t value = 0;
    int32_t position = 0;

    bool operator==(const CurveSample&) const = default;
};

/// Sorts by position; keys of equal position keep their order. A key that an exchange moves to the
/// higher place has its position truncated to an integer on the way.
void sortCurveKeys(std::span<CurveKey> keys);

/// The sorted `keys` with one at 0 and one at `end` added where there is none, in the colour of
/// their neighbour (black where there is none), and each key that stands where its predecessor now
/// stands moved on by 1.
std::vector<CurveKey> padCurveKeys(std::span<const CurveKey> keys, int32_t end);

/// Samples of the curve of `channel` (0 blue, 1 green, 2 red) through `keys`, led on to `end` in the
/// last key's value where they stop elsewhere. At least two keys or a place to lead to make a curve.
std::vector<CurveSample> buildChannelCurve(std::span<const CurveKey> keys, int32_t channel, int32_t end);

/// The value of `channel` at `x` on the straight line between `keys[segment - 1]` and
/// `keys[segment]`; the nearest span where there is no such pair, INT32_MIN on a span of no width.
int32_t linearKeyValue(int32_t x, int32_t segment, std::span<const CurveKey> keys, int32_t channel);

/// Three channels in the order of a pixel's bytes.
using RampColour = std::array<int32_t, 3>;

/// The straight-line ramp through sorted and padded `keys` at 0 to `length - 1`: a key's own colour
/// where the walk along the keys meets it, `linearKeyValue` elsewhere.
std::vector<RampColour> linearRamp(std::span<const CurveKey> keys, int32_t length);

/// A natural cubic spline in the plane, one span for each pair of neighbouring knots, its
/// parameter in proportion to the chords.
class CurveSpline {
public:
    explicit CurveSpline(std::span<const CurveSample> knots);

    /// Works out differences, system and tangents.
    void solve();
    /// How many samples `sample` writes.
    int64_t countSamples() const;
    /// Writes the samples of all spans from `out[counter]` on and advances `counter`. A knot between
    /// two spans is written by both.
    void sample(CurveSample* out, int64_t& counter) const;

private:
    using Knots = std::vector<float>;
    struct HermiteSegment;

    void takeDifferences();
    void buildSystem();
    void solveTangents(Knots& tangent, Knots& endTangent, const Knots& difference) const;
    HermiteSegment segment(int32_t span) const;

    int32_t knotCount_;
    Knots x_, y_;    ///< knots
    Knots dx_, dy_;  ///< from each knot to the next
    Knots tangentX_, tangentY_;
    Knots endTangentX_, endTangentY_;  ///< tangent at the far end of a span, in its own parameter
    Knots chordRatio_;                 ///< chord of a span over the next one's
    Knots subDiagonal_, mainDiagonal_, superDiagonal_;
};

/// The three curves of a list of colours.
class ColourCurve {
public:
    /// Sorts and pads `keys` and draws the curves up to `end`.
    ColourCurve(std::vector<CurveKey> keys, int32_t end);

    /// The sample of `channel` at `t` of the way along its list, 0 to 1; not limited to a byte.
    int32_t valueAt(size_t channel, float t) const {
        const std::vector<CurveSample>& samples = channels_[channel];
        const auto last = static_cast<int32_t>(samples.size()) - 1;
        return samples[static_cast<size_t>(clampTo(truncate(static_cast<double>(last) * t), 0, last))].value;
    }

    /// The samples of `channel`, at least one.
    std::span<const CurveSample> samples(size_t channel) const { return channels_[channel]; }

private:
    std::array<std::vector<CurveSample>, 3> channels_;
};

}  // namespace krl
