#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "krlimage/pixel.h"

/// The tent blur told slowly: every output is a weighted sum over its whole window.
namespace krl::reference {

inline int32_t tentHalfWidth(int32_t radius) {
    const double scaled = radius * 0.72;
    return static_cast<int32_t>(scaled >= 0 ? scaled + 0.5 : scaled - 0.5);
}

/// Blurs `count` values, `stride` apart, into `out`.
inline void tentLine(const std::vector<int64_t>& in, std::vector<int64_t>& out, size_t start, size_t stride,
                     int32_t count, int32_t halfWidth) {
    const int64_t weightOfAll = (halfWidth + int64_t{1}) * (halfWidth + 1);
    for (int32_t at = 0; at < count; ++at) {
        int64_t sum = 0;
        for (int32_t i = -halfWidth; i <= halfWidth; ++i) {
            const int32_t sample = std::clamp(at + i, 0, count - 1);
            sum += in[start + size_t(sample) * stride] * (halfWidth + 1 - std::abs(i));
        }
        out[start + size_t(at) * stride] = sum / weightOfAll;
    }
}

/// Both passes over one channel.
inline std::vector<int64_t> tentPlane(std::vector<int64_t> plane, int32_t height, int32_t width,
                                      int32_t radius) {
    const int32_t halfWidth = tentHalfWidth(radius);
    if (halfWidth < 0) return plane;
    std::vector<int64_t> rows(plane.size());
    for (int32_t y = 0; y < height; ++y)
        tentLine(plane, rows, size_t(y) * size_t(width), 1, width, halfWidth);
    for (int32_t x = 0; x < width; ++x) tentLine(rows, plane, size_t(x), size_t(width), height, halfWidth);
    return plane;
}

/// Both passes over the channels `first` to `last` of packed pixels.
inline std::vector<Pixel> tentPixels(std::vector<Pixel> pixels, int32_t height, int32_t width, int32_t radius,
                                     size_t first, size_t last) {
    for (size_t channel = first; channel <= last; ++channel) {
        std::vector<int64_t> plane(pixels.size());
        for (size_t i = 0; i < plane.size(); ++i) plane[i] = pixels[i][channel];
        plane = tentPlane(std::move(plane), height, width, radius);
        for (size_t i = 0; i < plane.size(); ++i) pixels[i][channel] = static_cast<uint8_t>(plane[i]);
    }
    return pixels;
}

}  // namespace krl::reference
