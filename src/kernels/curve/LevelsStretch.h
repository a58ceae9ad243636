#pragma once

#include <cstdint>

#include "core/Numbers.h"

namespace krl {

/// Levels stretched between two of them: 0 up to `black`, 255 above `white`, and
/// `(level - black) * 256 / (white - black + 1)` in between. Where the two have crossed there is nothing in
/// between.
class LevelsStretch {
public:
    LevelsStretch(int32_t black, int32_t white)
        : black_(black),
          white_(white),
          slope_(static_cast<float>(256.0 / wrapAdd(wrapSubtract(white, black), 1))) {}

    uint8_t operator()(int32_t level) const {
        if (level > white_) return 255;
        if (level < black_) return 0;
        return clampByte(truncate(wrapSubtract(level, black_) * static_cast<double>(slope_)));
    }

private:
    int32_t black_, white_;
    float slope_;
};

}  // namespace krl
