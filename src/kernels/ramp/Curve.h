#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "core/Numbers.h"
#include "krlimage/options.h"

/// Colour ramps: a few colours at places on a line become a dense ramp, along straight lines or along a
/// smooth curve.
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
/// their neighbour (black where there is none). A key at the new place of its predecessor moves on by 1.
std::vector<CurveKey> padCurveKeys(std::span<const CurveKey> keys, int32_t end);

/// Samples of the curve of `channel` (0 blue, 1 green, 2 red) through `keys`: a natural cubic spline in the
/// plane of position and value, one segment for each pair of neighbouring keys, its parameter in proportion
/// to the chords. Where the last key is not at `end`, the curve continues to `end` at its value. A key
/// between two segments is a sample of both; a single key makes no curve. Throws `std::bad_alloc` where keys
/// are absurdly far apart.
std::vector<CurveSample> buildChannelCurve(std::span<const CurveKey> keys, int32_t channel, int32_t end);

/// The value of `channel` at `x` on the straight line between `keys[segment - 1]` and `keys[segment]`; on the
/// nearest segment where there is no such pair, INT32_MIN on a segment of no width.
int32_t linearKeyValue(int32_t x, int32_t segment, std::span<const CurveKey> keys, int32_t channel);

/// Three channels in the order of a pixel's bytes.
using RampColour = std::array<int32_t, 3>;

/// The straight-line ramp through sorted and padded `keys` at 0 to `length - 1`: a key's own colour
/// where the walk along the keys meets it, `linearKeyValue` elsewhere.
std::vector<RampColour> linearRamp(std::span<const CurveKey> keys, int32_t length);

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
