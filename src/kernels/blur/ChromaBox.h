#pragma once

#include <cstdint>

#include "krlimage/engine.h"

/// Mean filters along one direction, in place, over bytes 0 and 1 of packed words. A sample outside
/// the line does not exist: at the ends of a line the window shrinks to what remains. The bands are those of
/// `engine`.
namespace krl {

/// The mean over `halfWidth` words to each side, along every row.
Status boxChromaRows(const ImageEngine& engine, Pixel* words, int32_t height, int32_t width,
                     int32_t halfWidth);

/// The same down the columns, with three properties that are part of it and depend on the bands. A
/// band visits one column more than its share, so the column where two bands meet is filtered by
/// both. In the columns of the last band the bottom row does not count. And the last band's further
/// column, past the right edge, is where its address leads: column 0 again, from row 1 down. The
/// outcome is as if the bands ran one after the other.
Status boxChromaColumns(const ImageEngine& engine, Pixel* words, int32_t height, int32_t width,
                        int32_t halfWidth);

}  // namespace krl
