#pragma once

#include <cstdint>

#include "krlimage/engine.h"

/// Edges and relief, and dark or bright areas that grow: what a pixel becomes by its neighbours.
///
/// Every effect first tests the state: `kStatusNoImage` without a picture, `kStatusNoPixels` for one without
/// pixels. `kStatusNoTaskMemory` or `kStatusThreadFailed` says that a band could not be started.
namespace krl {

/// Each byte of `target` becomes 255 less the length of its 3 by 3 gradient. The border takes the nearest
/// inner pixel; without an inner pixel all is white. Any target but `RGB` is `Alpha`.
Status sobel(ImageEngine& engine, ChannelTarget target);

/// Lights the picture as a relief from `azimuth` (0..360 degrees) and `elevation` (degrees); `strength`
/// (1..50) is the depth of the relief. A flat place takes the height of the light. Any target but `RGB` is
/// `Alpha`. Runs on the calling thread alone; `kStatusRefused` without pixels.
Status emboss(ImageEngine& engine, int32_t strength, float azimuth, float elevation, ChannelTarget target);

/// Keeps a byte, inverted, where its gradient is at least as large as its two neighbours along the gradient's
/// direction and is not weak: one below `threshold` is weak, and stays only if any neighbour is above
/// `threshold`. The rest is white. `blurAmount` above 0 softens the picture first. Pictures under 2 pixels in
/// either direction stay as they are.
Status cannyEdgeDetect(ImageEngine& engine, int32_t blurAmount, int32_t threshold, ChannelTarget target);

/// Each colour byte becomes the difference of the largest and the smallest within `size` (0..10) pixels all
/// round, times `brightness`. `smoothness` above 0 softens the picture first. Colours of a picture with any
/// alpha below 255 count scaled by alpha. Alpha stays. Pictures under 2 pixels in either direction stay as
/// they are.
Status glowingEdges(ImageEngine& engine, int32_t size, int32_t smoothness, float brightness);

// The names of the next two follow what becomes of bright figures on dark in print.

/// Spreads dark colours: each colour byte becomes the smallest within `size` pixels along its row and then
/// its column. A negative `size` counts as 0.
///
/// The window starts late: sample `size - 1` of a line never enters it, and near a line's start it reaches
/// one sample further back. A picture with any alpha below 255 has its colours scaled by alpha before either
/// pass, so they darken where alpha is low. Alpha stays.
Status dilation(ImageEngine& engine, int32_t size);

/// Spreads bright colours: `dilation` with the largest byte in place of the smallest.
Status erosion(ImageEngine& engine, int32_t size);

}  // namespace krl
