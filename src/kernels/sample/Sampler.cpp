#include "kernels/sample/Sampler.h"

#include <cmath>

namespace krl {

namespace {

/// The ceiling as this sampler has it: between -2 and -1 it gives 0, by which the left and top strips
/// reach a pixel farther than one would think.
int32_t sampleCeiling(double x) {
    return truncate(std::trunc(x + 1) - std::trunc(std::trunc(x + 2) - x - 1));
}

int32_t sampleFloor(double x) { return truncate(std::floor(x)); }

double mix(double weight, double weighted, double other) {
    return weight * weighted + (1.0 - weight) * other;
}

/// Two truncated blends of one channel: the columns `left` and `right`, each of rows `upper` (weighed
/// by `yWeight`) and `lower`, and then the row.
struct Taps {
    const SamplePoint& point;
    const ImageBuffer& source;
    int32_t left, right, upper, lower;

    int32_t column(int32_t x, size_t channel) const {
        return truncate(mix(point.yWeight, source.row(upper)[x][channel], source.row(lower)[x][channel]));
    }
    uint8_t blended(size_t channel) const { return across(column(left, channel), column(right, channel)); }
    uint8_t across(int32_t leftValue, int32_t rightValue) const {
        return static_cast<uint8_t>(truncate(mix(point.xWeight, leftValue, rightValue)));
    }

    /// Alpha with nothing where a tap is missing.
    uint8_t fadedAlpha() const {
        const double lowerWeight = 1.0 - point.yWeight;
        const auto fade = [&](double weight, int32_t value) { return truncate(weight * value); };
        const auto alpha = [&](int32_t x) -> int32_t { return source.row(upper)[x].alpha; };
        if (point.topStrip)
            return across(fade(point.yWeight, alpha(left)), fade(point.yWeight, alpha(right)));
        if (point.bottomStrip) return across(fade(lowerWeight, alpha(left)), fade(lowerWeight, alpha(right)));
        if (point.rightStrip) return static_cast<uint8_t>(fade(point.xWeight, column(left, 3)));
        if (point.leftStrip) return static_cast<uint8_t>(fade(1.0 - point.xWeight, column(right, 3)));
        return blended(3);
    }
};

}  // namespace

SamplePoint makeSamplePoint(float y, float x, int32_t width, int32_t height) {
    SamplePoint p;
    p.xCeil = sampleCeiling(x);
    p.yCeil = sampleCeiling(y);
    p.xFloor = sampleFloor(x);
    p.yFloor = sampleFloor(y);
    // Differences in double: a place far outside has indices that do not fit their difference.
    const auto weight = [](double place, double from, double to) {
        return from == to ? 1.0f : static_cast<float>((place - from) / (to - from));
    };
    p.yWeight = weight(y, p.yFloor, p.yCeil);
    p.xWeight = weight(x, p.xCeil, p.xFloor);

    const bool left = p.xFloor < 0 && p.xCeil == 0, right = p.xFloor < width && p.xCeil == width;
    const bool top = p.yFloor < 0 && p.yCeil == 0, bottom = p.yFloor < height && p.yCeil == height;
    const bool inColumns = p.xFloor >= 0 && p.xCeil < width, inRows = p.yFloor >= 0 && p.yCeil < height;
    p.leftStrip = left && inRows;
    p.rightStrip = right && inRows;
    p.topStrip = top && inColumns;
    p.bottomStrip = bottom && inColumns;
    p.cornerTopLeft = left && top;
    p.cornerBottomLeft = left && bottom;
    p.cornerTopRight = right && top;
    p.cornerBottomRight = right && bottom;
    p.inside = inColumns && inRows;
    return p;
}

void sampleBilinear(const SamplePoint& point, Pixel& destination, const ImageBuffer& source,
                    ChannelTarget target, SampleEdge edge) {
    Taps taps{point, source, point.xFloor, point.xCeil, point.yCeil, point.yFloor};
    if (point.topStrip)
        taps.lower = point.yCeil;
    else if (point.bottomStrip)
        taps.upper = point.yFloor;
    else if (point.rightStrip)
        taps.right = point.xFloor;
    else if (point.leftStrip)
        taps.left = point.xCeil;
    else if (!point.inside)
        return;

    if (target == ChannelTarget::RGBA || target == ChannelTarget::RGB)
        destination = {taps.blended(0), taps.blended(1), taps.blended(2), destination.alpha};
    if (target == ChannelTarget::RGBA && edge == SampleEdge::FadeAlpha)
        destination.alpha = taps.fadedAlpha();
    else if (target != ChannelTarget::RGB)
        destination.alpha = taps.blended(3);
}

}  // namespace krl
