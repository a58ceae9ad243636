#pragma once

#include "kernels/colour/ColourLanes.h"

namespace krl::test {

/// A batch of one red and one green with every blue.
inline ColourLanes everyBlue(int32_t red, int32_t green) {
    ColourLanes colours;
    for (size_t i = 0; i < kBatchPixels; ++i) {
        colours.red[i] = red;
        colours.green[i] = green;
        colours.blue[i] = static_cast<int32_t>(i % 256);
    }
    return colours;
}
static_assert(kBatchPixels >= 256);

}  // namespace krl::test
