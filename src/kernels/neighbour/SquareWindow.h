#pragma once

#include "core/ChannelMask.h"
#include "kernels/neighbour/LineWindow.h"

namespace krl {

/// Gives every byte of `mask` in the loaded picture the extreme of the bytes within `half` pixels: along its
/// row, and then of those down its column, both through `LineWindow::seededLate`. A negative `half` counts as
/// 0.
///
/// `kWeighted` scales the colours of a picture with any alpha below 255 by alpha before either pass. There is
/// one for `Smallest` and `Largest` weighted, and for `Smallest` as it is.
template <class Extreme, bool kWeighted>
Status spreadSquare(const ImageEngine& engine, ChannelMask mask, int32_t half);

}  // namespace krl
