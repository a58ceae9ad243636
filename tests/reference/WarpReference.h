#pragma once

#include <cmath>

#include "kernels/sample/Sampler.h"
#include "krlimage/warp.h"
#include "support/Picture.h"

/// The warps a pixel at a time, by the general sampler and the standard library's sines.
namespace krl::test {

/// One warped picture in the making: reads `source`, writes `result`.
struct SlowWarp {
    Picture source, result;
    SampleQuality quality;
    ChannelTarget target;

    SlowWarp(const Picture& picture, SampleQuality q, ChannelTarget t)
        : source(picture), result(picture), quality(q), target(t) {}

    ImageBuffer view() {
        auto* bytes = reinterpret_cast<uint8_t*>(source.pixels().data());
        const int32_t rowBytes = source.width() * 4;
        return {bytes, source.height(), source.width(), rowBytes,
                bytes + ptrdiff_t(rowBytes) * source.height()};
    }

    void place(int32_t x, int32_t y, float fromX, float fromY) {
        if (quality == SampleQuality::Bilinear) {
            const ImageBuffer from = view();
            sampleBilinear(makeSamplePoint(fromY, fromX, from.width, from.height), result.at(x, y), from,
                           target, SampleEdge::Repeat);
        } else {
            placeWhole(x, y, truncate(fromX), truncate(fromY));
        }
    }

    void placeWhole(int32_t x, int32_t y, int32_t fromX, int32_t fromY) {
        write(x, y, source.at(clampTo(fromX, 0, source.width() - 1), clampTo(fromY, 0, source.height() - 1)));
    }

    /// From `fromX` pixels after the beginning of row `fromY`.
    void placeAlong(int32_t x, int32_t y, int32_t fromX, int32_t fromY) {
        const int64_t place = int64_t(fromY) * source.width() + fromX;
        write(x, y, source.pixels()[size_t(clampTo(place, int64_t(0), int64_t(source.pixels().size()) - 1))]);
    }

    void write(int32_t x, int32_t y, Pixel p) {
        Pixel& out = result.at(x, y);
        if (target != ChannelTarget::Alpha) out = {p.blue, p.green, p.red, out.alpha};
        if (target != ChannelTarget::RGB) out.alpha = p.alpha;
    }
};

struct WaveNumbers {
    float amplitude, frequency, horizPhase, vertPhase;
    int32_t hPercent = 100, vPercent = 100;
};

/// One line of `length` pixels, `shift` along; `place(i, from)` for each with a place or a whole number.
inline void slowLine(float shift, int32_t length, int32_t period, SampleQuality quality, WaveEdge edge,
                     const std::function<void(int32_t, float)>& place,
                     const std::function<void(int32_t, int32_t)>& placeWhole) {
    float p = shift;
    for (int32_t i = 0; i < length; ++i) {
        if (quality == SampleQuality::Bilinear && edge == WaveEdge::Wrap) {
            if (p < 0)
                p = p + float(period);
            else if (p > float(length))
                p = p - float(period);
            place(i, p);
        } else if (quality == SampleQuality::Bilinear) {
            place(i, p < 0 ? 0 : p >= float(length) ? float(length - 1) : p);
        } else {
            const int32_t k = truncate(p);
            if (edge == WaveEdge::Wrap)
                placeWhole(i, k < 0 ? wrapAdd(k, length - 1) : k >= length ? k - length + 1 : k);
            else
                placeWhole(i, k < 0 ? 0 : p >= float(length) ? length - 1 : k);
        }
        p = p + 1.0f;
    }
}

inline Picture slowWaves(const Picture& picture, const WaveNumbers& n, WaveEdge edge, SampleQuality quality,
                         ChannelTarget target) {
    const auto freq = float(double(n.frequency) * 0.017453292519943295);
    const auto ampH = float(double(n.amplitude) * n.hPercent / 100);
    const auto ampV = float(double(n.amplitude) * n.vPercent / 100);
    const auto shift = [&](int32_t i, float phase, float amplitude) {
        const float angle = float(double(i) * freq + phase);
        return float(double(float(std::sin(double(angle)))) * amplitude);
    };
    SlowWarp rows(picture, quality, target);
    for (int32_t y = 0; y < picture.height(); ++y)
        slowLine(
            shift(y, n.horizPhase, ampH), picture.width(), picture.width(), quality, edge,
            [&](int32_t x, float from) { rows.place(x, y, from, float(y)); },
            [&](int32_t x, int32_t from) { rows.placeAlong(x, y, from, y); });
    SlowWarp columns(rows.result, quality, target);
    for (int32_t x = 0; x < picture.width(); ++x)
        slowLine(
            shift(x, n.vertPhase, ampV), picture.height(), picture.height() - 1, quality, edge,
            [&](int32_t y, float from) { columns.place(x, y, float(x), from); },
            [&](int32_t y, int32_t from) { columns.placeWhole(x, y, x, from); });
    return columns.result;
}

inline float slowHold(float place, int32_t length) {
    return place < 0 ? 0 : place >= float(length) ? float(length - 1) : place;
}

inline Picture slowBlockWaves(const Picture& picture, const WaveNumbers& n, SampleQuality quality,
                              ChannelTarget target) {
    const auto freq = float(double(n.frequency) * 0.017453292519943295);
    const double amplitude = n.amplitude < 0 ? 0 : n.amplitude;
    SlowWarp warp(picture, quality, target);
    for (int32_t y = 0; y < picture.height(); ++y)
        for (int32_t x = 0; x < picture.width(); ++x) {
            const auto fromX =
                float(std::sin((picture.width() / 2 - x) * double(freq) + n.horizPhase) * amplitude + x);
            const auto fromY =
                float(std::cos((picture.height() / 2 - y) * double(freq) + n.vertPhase) * amplitude + y);
            warp.place(x, y, slowHold(fromX, picture.width()), slowHold(fromY, picture.height()));
        }
    return warp.result;
}

inline Picture slowCircularWaves(const Picture& picture, float amplitude, float frequency, float phase,
                                 Point origin, SampleQuality quality, ChannelTarget target) {
    const auto freq = float(double(frequency) * 0.017453292519943295);
    const double height = amplitude < 0 ? 0 : amplitude;
    SlowWarp warp(picture, quality, target);
    for (int32_t y = 0; y < picture.height(); ++y)
        for (int32_t x = 0; x < picture.width(); ++x) {
            const double dx = wrapSubtract(origin.x, x), dy = wrapSubtract(origin.y, y);
            const auto squareY = float(dy * dy);
            const auto squares = float(dx * dx + squareY);
            const double t = std::sqrt(double(squares)) * freq + phase;
            warp.place(x, y, slowHold(float(std::sin(t) * height + x), picture.width()),
                       slowHold(float(std::cos(t) * height + y), picture.height()));
        }
    return warp.result;
}

inline Picture slowTwirl(const Picture& picture, int32_t twirl, SampleQuality quality, ChannelTarget target) {
    const double width = picture.width(), height = picture.height();
    const double cx = width * 0.5, cy = height * 0.5, k = twirl / (width * 0.5 * 10);
    const double minHalf = std::min(width, height) * 0.5, maxHalf = std::max(width, height) * 0.5;
    SlowWarp warp(picture, quality, target);
    for (int32_t y = 0; y < picture.height(); ++y)
        for (int32_t x = 0; x < picture.width(); ++x) {
            const double dx = cx - x, dy = cy - y, r = std::sqrt(dx * dx + dy * dy), a = std::atan2(dy, dx);
            const auto v = float(std::fabs(a * 0.017453292519943295));
            const double w = (v - 90.0) * 2.8333333333333335;
            const double limit = ((255 - w) * maxHalf + w * minHalf) * 0.00390625;
            if (r >= limit) continue;
            const double t = a + (limit - r) * k;
            auto sx = float(cx - r * std::cos(t)), sy = float(cy - r * std::sin(t));
            sx = sx < 0 ? 0 : sx > float(width) ? float(width - 1) : sx;
            sy = sy < 0 ? 0 : sy > float(height) ? float(height - 1) : sy;
            warp.place(x, y, sx, sy);
        }
    return warp.result;
}

}  // namespace krl::test
