#pragma once

#include <cstdint>

#include "krlimage/engine.h"
#include "krlimage/pixel.h"

/// Tone effects: each byte changes by itself, whatever its neighbours are.
///
/// - `brightness`, `contrast`, `gamma`, `levels`, `exposure`, `superContrast`: grading curves
/// - `invert`, `solarise`, `posterise`, `threshold`, `thresholdPro`: graphic looks
/// - `mediumTones`: brings the mean of each channel near a level
///
/// For a `ChannelTarget`, `RGB` selects the three colour bytes and any other value alpha alone. Unless noted
/// otherwise the effects return the engine's `imageStatus`, or `kStatusNoTaskMemory` or `kStatusThreadFailed`
/// where a band could not be started.
namespace krl {

/// Adds `brightnessInt` to every byte of `target`, limited to 0..255. With the wide path on, only
/// the low byte of its magnitude counts.
Status brightness(ImageEngine& engine, int32_t brightnessInt, ChannelTarget target);

/// Scales the distance of every byte from 127: 1.0 changes nothing, 0.0 gives flat 127, negative
/// values reverse the tones.
Status contrast(ImageEngine& engine, float contrastFloat, ChannelTarget target);

/// Raises every byte, on its own scale of 0..255, to the power `1 / gamma`. 1.0 changes nothing;
/// there is no rescaling, so above 1 a picture darkens sharply and below 1 it whitens.
Status gamma(ImageEngine& engine, float gamma, ChannelTarget target);

/// Complements every byte of `target`.
Status invert(ImageEngine& engine, ChannelTarget target);

/// The bytes that `levels` can work on.
enum class LevelsChannel : int32_t {
    None = 0,
    RGBA = 4,
    RGB = 5,
    Alpha = 6,
    Red = 21,
    Green = 22,
    Blue = 23
};

/// Spreads the tones from `minLevel` to `maxLevel` over `outMin` to `outMax`, bending the middle by
/// `midGamma` (above 1 lightens). Levels are limited to 0..255, `midGamma` to 0.1..9.99.
Status levels(ImageEngine& engine, int32_t minLevel, float midGamma, int32_t maxLevel, int32_t outMin,
              int32_t outMax, LevelsChannel channel);

/// Drops every byte to the lower bound of its band, of `level` equal bands; the lowest band goes to
/// 0 and the highest to 255. A byte on a bound stays, and so does everything for a `level` of 0; a
/// negative one throws `std::bad_alloc`.
Status posterise(ImageEngine& engine, int32_t level, ChannelTarget target);

/// Reverses the tones above 128.
Status solarise(ImageEngine& engine, ChannelTarget target);

/// Spreads the tones from `low` to `high` over 0..255; what is above `high` becomes 255, what is
/// below `low` 0. Both are limited to 0..255.
Status superContrast(ImageEngine& engine, int32_t low, int32_t high, ChannelTarget target);

/// White where the mean of the colour bytes (or alpha) is above `threshold`, black elsewhere.
/// `threshold` is limited to 0..255.
Status threshold(ImageEngine& engine, int32_t threshold, ChannelTarget target);

/// Scales light as a longer exposure would (`exposure`, -20..20), lifts or lowers it (`offset`,
/// -0.5..0.5) and bends it (`gamma`, 0.1..9.99, on the scale of bytes as `gamma` does). Colour only.
Status exposure(ImageEngine& engine, float exposure, float offset, float gamma);

/// Scales each colour channel so that its mean comes near `level`. Runs on the calling thread alone;
/// `kStatusRefused` where no image is loaded.
Status mediumTones(ImageEngine& engine, int32_t level);

/// Splits the levels at `threshold` (0..255) and makes `steps` steps of either part: greys of the mean
/// colour for `RGB`, alpha for any other target. `preBlur` above 0 softens the picture first.
Status thresholdPro(ImageEngine& engine, int32_t preBlur, int32_t threshold, int32_t steps,
                    ChannelTarget target);

}  // namespace krl
