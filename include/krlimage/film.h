#pragma once

#include <cstdint>
#include <span>

#include "krlimage/engine.h"
#include "krlimage/options.h"

/// Looks of film processes, and texture drawn from a seed.
///
/// - `bleachBypass`     silver left in the print: contrast over colour
/// - `dayForNight`      a sunlit scene made nocturnal
/// - `twoStripColor`    what is left of two inks: the green channel
/// - `threeStripColor`  three dye separations that darken one another
/// - `multiColourise`   a ramp of colours by brightness
/// - `noise`            independent from pixel to pixel, stronger where the picture is bright
/// - `grain`            smooth clumps of a chosen size, held back in shadows and highlights
///
/// Unless noted otherwise the effects return the engine's `imageStatus`, or `kStatusNoTaskMemory` or
/// `kStatusThreadFailed` where a band could not be started.
namespace krl {

/// Overlays the picture with its own mean under `contrast` (0..2), with `opacity` (0..255), and
/// multiplies saturation by `saturation` (0..2; exactly 1 leaves it). Alpha stays.
Status bleachBypass(ImageEngine& engine, int32_t opacity, float contrast, float saturation);

/// How night falls.
struct DayForNightSettings {
    int32_t blur = 0;                     ///< radius in pixels; 0 or less is sharp
    float blurOpacity = 1;                ///< share of the sharp picture, 0..1
    Colour rgbColor{uint32_t{0xFFFFFF}};  ///< colour of the night
    float colorOpacity = 1;               ///< share of the colours by day, 0..1
    float highlightOpacity = 0;           ///< how far bright places shine through, 0..1
    float saturation = 1;                 ///< factor, 0..2; exactly 1 leaves it
    int32_t brightness = 0;               ///< levels to add, -255..255
    float contrast = 1;                   ///< factor on the distance from level 127, 0..2
    float gamma = 1;                      ///< 0..2, on the scale of bytes
    ChannelTarget target = ChannelTarget::RGB;
};

/// Mixes the picture with its blur, tints it with a colour, screens back what was brighter than half,
/// then sets tone and saturation. Settings are limited to their ranges. Alpha is mixed with its blur for
/// every target but `RGB`.
Status dayForNight(ImageEngine& engine, const DayForNightSettings& settings);

/// Leaves the green channel, and black in the others; the three numbers change nothing. Alpha
/// stays. Runs on the calling thread alone.
Status twoStripColor(ImageEngine& engine, int32_t expandRed, int32_t expandGreen, int32_t expandBlue);

/// Splits the picture into three separations and prints each colour through the dyes of the other
/// two; an expand above 0 delays the start of its dye. Alpha stays.
Status threeStripColor(ImageEngine& engine, int32_t expandRed, int32_t expandGreen, int32_t expandBlue);

/// Mixes the picture by `strength` (0..1) with the smooth ramp through `colourValues` at its luma;
/// positions are levels, 0..255. Alpha stays.
Status multiColourise(ImageEngine& engine, std::span<const CurveKey> colourValues, float strength);

/// Scales the colour of each pixel by a random factor of up to 1 +- `varience`, the same for all
/// three bytes, and shifts alpha by up to +-1000 `varience`, as selected by `target` (alpha alone unless it
/// is `RGBA` or `RGB`). 0 or less changes nothing. The pattern depends on the number of bands.
Status noise(ImageEngine& engine, float varience, int32_t seed, ChannelTarget target);

/// Whether the colours have grain of their own or share the red one.
enum class GrainColour : int32_t { RGB, GREYSCALE };

/// The grain of one colour.
struct ColourGrain {
    float frequency = 1;  ///< size of a clump in pixels, at least 1
    float strength = 0;   ///< 0, no grain, to 1
};

/// How grain is laid.
struct GrainSettings {
    ColourGrain red, green, blue;
    int32_t lowerBand = 0;    ///< luma below which the grain fades toward black
    int32_t upperBand = 255;  ///< luma above which it fades toward white
    int32_t seed = 1;
    GrainColour colourMethod = GrainColour::RGB;
};

/// Lays smooth noise over each colour in soft light. Pixels of alpha 0 are left, and alpha stays.
Status grain(ImageEngine& engine, const GrainSettings& settings);

}  // namespace krl
