#pragma once

#include <cstdint>

#include "krlimage/pixel.h"

/// The bins of brightness that oil paint's brush counts, for many pixels at once.
namespace krl {

inline constexpr int32_t kMostBrush = 5;

/// Pixels whose bins are decided together.
inline constexpr int32_t kSpan = 256;

/// Scales the colours of at most `kSpan` pixels by alpha and puts the bin of their brightness in its place,
/// in single precision: `levelScale` is bins for each level. Returns whether any bin is in doubt.
bool mixSpan(const Pixel* __restrict pixels, int32_t count, float levelScale, Pixel* __restrict mixed,
             int32_t* __restrict doubts);

/// The fullest bin under the brush at each pixel of a strip, the lowest of equals.
struct Winners {
    static constexpr int32_t kStrip = 128;

    int8_t count[kStrip];
    uint8_t bin[kStrip];
};

/// Lets a bin win where its counters, summed over the columns under a brush of size `brush`, are more than
/// the winner's. Counters are numbered from the brush's reach before the strip to that after it.
void challenge(int32_t brush, const int8_t* counts, uint8_t bin, Winners& winners);

}  // namespace krl
