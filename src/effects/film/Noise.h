#pragma once

#include <cstdint>

#include "krlimage/engine.h"

/// Random texture, drawn from a seed.
///
/// - `noise`  independent from pixel to pixel, stronger on what is bright
/// - `grain`  smooth clumps of a chosen size, held back in shadows and highlights
namespace krl {

/// Scales the colour of each pixel by a random factor of up to 1 +- `varience`, the same for all
/// three bytes, and shifts alpha by up to +-1000 `varience`, as `target` says (alpha alone unless it
/// is `RGBA` or `RGB`). 0 or less changes nothing. The pattern depends on the number of bands.
Status noise(ImageEngine& engine, float varience, int32_t seed, ChannelTarget target);

/// Whether the colours have grain of their own or share the red one.
enum class GrainColour : int32_t { RGB, GREYSCALE };

/// Lays smooth noise over each colour in soft light. A frequency is the size of a clump in pixels, at
/// least 1; a strength goes from 0, no grain, to 1. The grain fades where luma is below `lowerBand`
/// or above `upperBand`. Pixels of alpha 0 are left, and alpha stays.
Status grain(ImageEngine& engine, float frequencyRed, float frequencyGreen, float frequencyBlue,
             float strengthRed, float strengthGreen, float strengthBlue, int32_t lowerBand, int32_t upperBand,
             int32_t seed, GrainColour colourMethod);

}  // namespace krl
