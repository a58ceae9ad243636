#pragma once

#include "kernels/sample/Sampler.h"
#include "krlimage/engine.h"

/// Warps along sines.
///
/// - `waves`: rows and columns shifted along a sine
/// - `blockWaves`: columns by their own cosine and rows by theirs, so that the picture breaks into blocks
/// - `circularWaves`: waves around a point
///
/// Frequencies are in degrees for each pixel, phases in radians.
namespace krl {

/// What a shift beyond the picture's edge shows.
enum class WaveEdge : int32_t {
    Wrap = 28,    ///< the picture comes in again on the other side
    Repeat = 29,  ///< the pixels of the edge
};

/// Shifts each row by `hPercent` percent of `amplitude` along a sine that starts at `horizPhase`, and then
/// each column by `vPercent` percent from `vertPhase`. Wrapping is uneven, and known for it: down the
/// columns the period is one short of the height, and with `Standard` quality it is one short on both
/// sides. It brings back one length of the picture: farther along a row `Standard` runs on into the rows
/// beside.
Status waves(ImageEngine& engine, float amplitude, float frequency, float horizPhase, float vertPhase,
             int32_t hPercent, int32_t vPercent, WaveEdge edgeType, SampleQuality quality,
             ChannelTarget colourOrAlpha);

/// Moves the columns along a sine of `horizPhase` and the rows along a cosine of `vertPhase`, both counted
/// from the middle. An `amplitude` below 0 is 0.
Status blockWaves(ImageEngine& engine, float amplitude, float frequency, float horizPhase, float vertPhase,
                  SampleQuality quality, ChannelTarget colourOrAlpha);

/// Moves each pixel by sine and cosine of its distance from `origin`. An `amplitude` below 0 is 0.
Status circularWaves(ImageEngine& engine, float amplitude, float frequency, float phase, Point origin,
                     SampleQuality quality, ChannelTarget colourOrAlpha);

}  // namespace krl
