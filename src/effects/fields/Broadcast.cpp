#include "effects/fields/Broadcast.h"

#include <algorithm>

namespace krl {

namespace {

/// Calls `move(partPixel, wholePixel)` for every pixel of every whole block, in the rows' order.
template <class Part, class Whole, class Move>
void forEachLane(std::span<const Part> parts, const Whole& whole, Move&& move) {
    const int32_t factor = broadcastFactor(int32_t(parts.size()));
    const ImageInfo& size = parts.front().info;
    for (int32_t y = 0; y < size.height * factor; ++y)
        for (int32_t column = 0; column < factor; ++column) {
            auto* partPixel = parts[size_t(y % factor) * size_t(factor) + size_t(column)].row(y / factor);
            auto* wholePixel = whole.row(y) + column;
            for (int32_t x = 0; x < size.width; ++x) move(partPixel[x], wholePixel[ptrdiff_t(x) * factor]);
        }
}

bool isPartCount(size_t count) { return count == 4 || count == 16; }

bool hasSize(const ImageInfo& info, const ImageInfo& expected) {
    return info.width == expected.width && info.height == expected.height;
}

ImageInfo unpaddedInfo(int32_t width, int32_t height) {
    return {.width = width, .height = height, .rowBytes = width * int32_t(sizeof(Pixel))};
}

}  // namespace

Status broadcastPartSize(const ImageEngine& engine, int32_t factor, ImageInfo& part) {
    if (Status state = engine.imageStatus()) return state;
    part = unpaddedInfo(engine.buffer()->width / factor, engine.buffer()->height / factor);
    return part.width < 1 || part.height < 1 ? kStatusRefused : kStatusOk;
}

Status broadcastSplit(const ImageEngine& engine, std::span<const NewImage> parts) {
    if (Status state = engine.imageStatus()) return state;
    if (!isPartCount(parts.size())) return kStatusRefused;
    ImageInfo expected;
    if (Status size = broadcastPartSize(engine, broadcastFactor(int32_t(parts.size())), expected))
        return size;
    const auto fits = [&](const NewImage& part) { return part.pixels && hasSize(part.info, expected); };
    if (!std::ranges::all_of(parts, fits)) return kStatusRefused;

    forEachLane(parts, *engine.buffer(), [](Pixel& part, const Pixel& whole) { part = whole; });
    return kStatusOk;
}

Status broadcastWholeSize(std::span<const SecondImage> parts, ImageInfo& whole) {
    if (!isPartCount(parts.size())) return kStatusRefused;
    const ImageInfo& first = parts.front().info;
    const auto fits = [&](const SecondImage& part) { return part.pixels && hasSize(part.info, first); };
    if (first.width < 1 || first.height < 1 || !std::ranges::all_of(parts, fits)) return kStatusRefused;

    const int32_t factor = broadcastFactor(int32_t(parts.size()));
    const int64_t width = int64_t(first.width) * factor, height = int64_t(first.height) * factor;
    if (width * int64_t(sizeof(Pixel)) > INT32_MAX || height > INT32_MAX) return kStatusRefused;
    whole = unpaddedInfo(int32_t(width), int32_t(height));
    return kStatusOk;
}

Status broadcastCombine(std::span<const SecondImage> parts, const NewImage& whole) {
    ImageInfo expected;
    if (Status size = broadcastWholeSize(parts, expected)) return size;
    if (!whole.pixels || !hasSize(whole.info, expected)) return kStatusRefused;

    forEachLane(parts, whole, [](const Pixel& part, Pixel& joined) { joined = part; });
    return kStatusOk;
}

}  // namespace krl
