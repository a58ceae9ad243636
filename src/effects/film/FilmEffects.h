#pragma once

#include <cstdint>
#include <span>

#include "krlimage/engine.h"
#include "krlimage/options.h"

/// Looks of film processes. Grain and noise are in `Noise.h`.
///
/// - `bleachBypass`     silver left in the print: contrast over colour
/// - `dayForNight`      a sunlit scene made nocturnal
/// - `twoStripColor`    what is left of two inks: the green channel
/// - `threeStripColor`  three dye separations that darken one another
/// - `multiColourise`   a ramp of colours by brightness
namespace krl {

/// Overlays the picture with its own mean under `contrast` (0..2), with `opacity` (0..255), and
/// multiplies saturation by `saturation` (0..2; exactly 1 leaves it). Alpha stays.
Status bleachBypass(ImageEngine& engine, int32_t opacity, float contrast, float saturation);

/// Mixes the picture with its blur by `blurOpacity`, tints it with `rgbColor` up to `colorOpacity`,
/// screens back what was brighter than half by `highlightOpacity`, then sets tone and saturation.
/// Opacities are limited to 0..1, `saturation`, `contrast` and `gamma` to 0..2, `brightness` to
/// -255..255. Alpha is mixed with its blur for every target but `RGB`.
Status dayForNight(ImageEngine& engine, int32_t blur, float blurOpacity, Colour rgbColor, float colorOpacity,
                   float highlightOpacity, float saturation, int32_t brightness, float contrast, float gamma,
                   ChannelTarget target);

/// Leaves the green channel, and black in the others; the three numbers change nothing. Alpha
/// stays. Runs on the calling thread.
Status twoStripColor(ImageEngine& engine, int32_t expandRed, int32_t expandGreen, int32_t expandBlue);

/// Splits the picture into three separations and prints each colour through the dyes of the other
/// two; an expand above 0 lets its dye set in later. Alpha stays.
Status threeStripColor(ImageEngine& engine, int32_t expandRed, int32_t expandGreen, int32_t expandBlue);

/// Mixes the picture by `strength` (0..1) with the smooth ramp through `colourValues` at its luma;
/// positions are levels, 0..255. Alpha stays.
Status multiColourise(ImageEngine& engine, std::span<const CurveKey> colourValues, float strength);

}  // namespace krl
