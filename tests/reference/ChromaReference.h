#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "core/Numbers.h"
#include "krlimage/pixel.h"

/// The conversion to luma and colour differences and the box passes over them, told slowly.
namespace krl::reference {

/// The single-precision value of 0.001, widened.
inline constexpr double kThousandth = 0.0010000000474974513;

/// U, V, Y and 0 of one pixel, by integer division.
inline Pixel chromaByDivision(Pixel p) {
    const int32_t y = (114 * p.blue + 587 * p.green + 299 * p.red) / 1000;
    return {static_cast<uint8_t>((p.blue - y) * 565 / 1000 + 128),
            static_cast<uint8_t>((p.red - y) * 713 / 1000 + 128), static_cast<uint8_t>(y), 0};
}

/// The same by the float scale.
inline Pixel chromaByScale(Pixel p) {
    const int32_t y = truncate((114 * p.blue + 587 * p.green + 299 * p.red) * kThousandth);
    return {static_cast<uint8_t>(128 - truncate((p.blue - y) * 565 * -kThousandth)),
            static_cast<uint8_t>(128 - truncate((p.red - y) * 713 * -kThousandth)), static_cast<uint8_t>(y),
            0};
}

/// Mean of one byte over `count` places that are `stride` words apart, in place.
inline void boxLine(std::vector<Pixel>& words, size_t start, size_t stride, int32_t count, int32_t halfWidth,
                    size_t channel) {
    std::vector<int64_t> old;
    for (int32_t at = 0; at < count; ++at) old.push_back(words[start + size_t(at) * stride][channel]);
    for (int32_t at = 0; at < count; ++at) {
        const int32_t from = at > halfWidth ? at - halfWidth : 0;
        const int32_t to = count - 1 - at > halfWidth ? at + halfWidth : count - 1;
        int64_t sum = 0;
        for (int32_t i = from; i <= to; ++i) sum += old[size_t(i)];
        words[start + size_t(at) * stride][channel] = static_cast<uint8_t>(sum / (to - from + 1));
    }
}

inline void boxRows(std::vector<Pixel>& words, int32_t height, int32_t width, int32_t halfWidth) {
    for (int32_t y = 0; y < height; ++y)
        for (size_t channel : {0u, 1u})
            boxLine(words, size_t(y) * size_t(width), 1, width, halfWidth, channel);
}

/// Band after band, column after column; a walk goes on while its address is below a limit that
/// starts a band's width short of the block and moves with the column.
inline void boxColumns(std::vector<Pixel>& words, int32_t height, int32_t width, int32_t halfWidth,
                       int32_t threadCount) {
    const int64_t share = (width + threadCount - 1) / threadCount;
    for (int32_t band = 0; band < threadCount; ++band) {
        int64_t limit = int64_t{width} * height - share;
        for (int64_t column = band * share; column <= (band + 1) * share; ++column, ++limit) {
            int32_t rows = 0;
            while (column + int64_t{rows} * width < limit) ++rows;
            for (size_t channel : {0u, 1u})
                boxLine(words, size_t(column), size_t(width), rows, halfWidth, channel);
        }
    }
}

}  // namespace krl::reference
