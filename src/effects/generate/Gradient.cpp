#include "effects/generate/Gradient.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "core/Numbers.h"
#include "kernels/ramp/Curve.h"

namespace krl {

namespace {

constexpr uint32_t kAlphaMask = 0xFF000000u;

/// The colour bytes of a pixel word, each channel by its low byte.
uint32_t colourWord(const RampColour& colour) {
    const auto byte = [&](size_t channel) { return static_cast<uint32_t>(colour[channel]) & 0xFFu; };
    return byte(0) | byte(1) << 8 | byte(2) << 16;
}

std::vector<uint32_t> linearColumns(std::vector<CurveKey> keys, int32_t width) {
    sortCurveKeys(keys);
    std::vector<uint32_t> columns;
    columns.reserve(static_cast<size_t>(width));
    for (const RampColour& colour : linearRamp(padCurveKeys(keys, width), width))
        columns.push_back(colourWord(colour));
    return columns;
}

std::vector<uint32_t> curvedColumns(const LookupTables& tables, std::vector<CurveKey> keys, int32_t width) {
    const ColourCurve curve(std::move(keys), width);
    std::vector<uint32_t> columns;
    columns.reserve(static_cast<size_t>(width));
    for (int32_t x = 0; x < width; ++x) {
        const float t = tables.unitFromByte[std::min(x, 255)];
        const auto value = [&](size_t channel) { return int32_t{clampByte(curve.valueAt(channel, t))}; };
        columns.push_back(colourWord({value(0), value(1), value(2)}));
    }
    return columns;
}

}  // namespace

Status rgbGradient(const LookupTables& tables, Pixel* pixels, int32_t width, int32_t height,
                   std::vector<CurveKey> keys, GradientType type) {
    if (width <= 0 || height <= 0) return kStatusOk;
    const auto columnCount = static_cast<size_t>(width);
    std::vector<uint32_t> columns;
    if (keys.size() == 1) {
        const CurveKey& key = keys.front();
        columns.assign(columnCount, colourWord({key.blue, key.green, key.red}));
    } else if (type == GradientType::linear) {
        columns = linearColumns(std::move(keys), width);
    } else {
        columns = curvedColumns(tables, std::move(keys), width);
    }

    auto* bytes = reinterpret_cast<uint8_t*>(pixels);
    for (int32_t y = 0; y < height; ++y) {
        for (size_t x = 0; x < columnCount; ++x, bytes += 4) {
            uint32_t word;
            std::memcpy(&word, bytes, 4);
            word = (word & kAlphaMask) | columns[x];
            std::memcpy(bytes, &word, 4);
        }
    }
    return kStatusOk;
}

}  // namespace krl
