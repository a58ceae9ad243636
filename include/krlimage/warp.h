#pragma once

#include "krlimage/engine.h"
#include "krlimage/options.h"

/// Effects that move pixels: each reads a copy of the picture at another place and writes the bytes that
/// `colourOrAlpha` names. `SampleQuality::Standard` takes the nearest pixel, `Bilinear` a mean of the four
/// around the place. Frequencies are in degrees for each pixel, phases in radians. Each gives
/// `kStatusNoImage` or `kStatusNoPixels` where there is no picture.
namespace krl {

/// What a shift beyond the picture's edge shows.
enum class WaveEdge : int32_t {
    Wrap = 28,    ///< the picture comes in again on the other side
    Repeat = 29,  ///< the pixels of the edge
};

struct WaveSettings {
    float amplitude = 0;     ///< height of the waves in pixels
    float frequency = 0;     ///< degrees for each pixel
    float horizPhase = 0;    ///< where the wave of the rows begins, in radians
    float vertPhase = 0;     ///< where the wave of the columns begins, in radians
    int32_t hPercent = 100;  ///< share of the amplitude for the rows
    int32_t vPercent = 100;  ///< share of the amplitude for the columns
    WaveEdge edgeType = WaveEdge::Wrap;
};

/// Shifts each row along a sine, and then each column.
///
/// Wrapping has quirks that are kept for compatibility. Down the columns the period is one short of the
/// height; with `Standard` quality it is one short in both directions. It brings back one length of the
/// picture: farther along a row, `Standard` runs on into the rows beside.
Status waves(ImageEngine& engine, const WaveSettings& settings, SampleQuality quality,
             ChannelTarget colourOrAlpha);

/// Moves the columns along a sine of `horizPhase` and the rows along a cosine of `vertPhase`, both counted
/// from the middle, so that the picture breaks into blocks. An `amplitude` below 0 is 0.
Status blockWaves(ImageEngine& engine, float amplitude, float frequency, float horizPhase, float vertPhase,
                  SampleQuality quality, ChannelTarget colourOrAlpha);

/// Moves each pixel by sine and cosine of its distance from `origin`. An `amplitude` below 0 is 0.
Status circularWaves(ImageEngine& engine, float amplitude, float frequency, float phase, Point origin,
                     SampleQuality quality, ChannelTarget colourOrAlpha);

/// Turns the picture around its middle, by an angle that grows from the rim of a disc inward. `twirl` is
/// that growth, in tenths of a radian over half the picture's width; it may be negative. Pixels beyond the
/// rim stay as they are.
Status twirl(ImageEngine& engine, int32_t twirl, SampleQuality quality, ChannelTarget colourOrAlpha);

/// What of a displacement map's pixel is read as its value, 0 to 255.
enum class MapOption : int32_t {
    SameAsMapOne = 34,  ///< the first map's value; for the second map alone
    Off = 35,           ///< 128 everywhere, which is next to no shift
    Red = 36,
    Green = 37,
    Blue = 38,
    Alpha = 39,  ///< halved
    Greyscale = 40,
    Luminosity = 41,
    Hue = 42,
    Saturation = 43,  ///< halved
    Lightness = 44,
};

/// Where a shift beyond the picture leads. Compared with `WaveEdge` the two words are swapped.
enum class MapEdge : int32_t {
    Wrap = 24,    ///< to the picture's edge
    Repeat = 25,  ///< into the picture again, by whole widths and heights
};

/// A picture whose pixels say how far others move.
struct DisplacementMap {
    SecondImage image = {};
    MapOption colouringOption = MapOption::Red;
};

/// Moves each pixel by what two maps of the image's own size say: across by the first, up and down by the
/// second, by up to half of `hDistance` and `vDistance`. Bright values read from the right and from above,
/// dark ones from the left and below; a map's alpha scales its own shift. Samples bilinearly, all four bytes.
/// Distances below 0 are 0. `kStatusRefused` where a map does not fit.
Status displacementMapComposite(ImageEngine& engine, const DisplacementMap& mapOne,
                                const DisplacementMap& mapTwo, float hDistance, float vDistance,
                                MapEdge edgeOption);

}  // namespace krl
