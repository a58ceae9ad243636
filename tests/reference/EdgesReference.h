#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "kernels/blur/TentBlur.h"
#include "krlimage/edges.h"
#include "support/Picture.h"

/// The edge filters pixel by pixel and channel by channel, as they are defined.
namespace krl::test {

/// Samples of one channel around a pixel.
struct Around {
    const Picture& picture;
    int x, y;
    size_t channel;

    int operator()(int dx, int dy) const { return picture.at(x + dx, y + dy)[channel]; }
    int sumA() const {
        const Around& s = *this;
        return s(-1, +1) - s(-1, -1) + 2 * (s(0, +1) - s(0, -1)) + s(+1, +1) - s(+1, -1);
    }
    int sumB() const {
        const Around& s = *this;
        return s(-1, -1) + 2 * s(-1, 0) + s(-1, +1) - s(+1, -1) - 2 * s(+1, 0) - s(+1, +1);
    }
};

inline void referenceRepair(Picture& picture, size_t channel) {
    const int w = picture.width(), h = picture.height();
    if (w < 2 || h < 2) return;
    for (int x = 0; x < w; ++x) {
        picture.at(x, 0)[channel] = picture.at(x, 1)[channel];
        picture.at(x, h - 1)[channel] = picture.at(x, h - 2)[channel];
    }
    for (int y = 0; y < h; ++y) {
        picture.at(0, y)[channel] = picture.at(1, y)[channel];
        picture.at(w - 1, y)[channel] = picture.at(w - 2, y)[channel];
    }
    picture.at(0, 0)[channel] = picture.at(1, 1)[channel];
    picture.at(w - 1, 0)[channel] = picture.at(w - 2, 1)[channel];
    picture.at(0, h - 1)[channel] = picture.at(1, h - 2)[channel];
    picture.at(w - 1, h - 1)[channel] = picture.at(w - 2, h - 2)[channel];
}

/// Every inner byte of the target's channels through `byteOf`, then the border repaired.
template <class ByteOf>
Picture referenceInner(const Picture& copy, Picture picture, ChannelTarget target, ByteOf&& byteOf) {
    const bool colour = target == ChannelTarget::RGB;
    for (size_t channel = colour ? 0 : 3; channel < (colour ? 3u : 4u); ++channel) {
        for (int y = 1; y < picture.height() - 1; ++y)
            for (int x = 1; x < picture.width() - 1; ++x)
                picture.at(x, y)[channel] = byteOf(Around{copy, x, y, channel});
        referenceRepair(picture, channel);
    }
    return picture;
}

inline Picture referenceSobel(const Picture& source, ChannelTarget target) {
    Picture white = source;
    for (Pixel& p : white.pixels())
        p = target == ChannelTarget::RGB ? Pixel{255, 255, 255, p.alpha} : Pixel{p.blue, p.green, p.red, 255};
    return referenceInner(source, white, target, [](const Around& s) {
        const int a = s.sumA(), b = s.sumB();
        return uint8_t(255 - std::min(255, truncate(std::sqrt(double(a * a + b * b)))));
    });
}

inline Picture referenceEmboss(const Picture& source, int strength, float azimuth, float elevation,
                               ChannelTarget target) {
    const float az = float(std::clamp(azimuth, 0.0f, 360.0f) * kRadiansPerDegree);
    const float el = float(elevation * kRadiansPerDegree);
    const int lx = truncate(std::cos(double(az)) * std::cos(double(el)) * 255.9);
    const int ly = truncate(std::sin(double(az)) * std::cos(double(el)) * 255.9);
    const int lz = truncate(std::sin(double(el)) * 255.9);
    const int nz = 1530 / std::clamp(strength, 1, 50);
    return referenceInner(source, source, target, [=](const Around& s) {
        const int nx = s(-1, -1) + s(-1, 0) + s(-1, +1) - s(+1, -1) - s(+1, 0) - s(+1, +1);
        const int ny = s(-1, +1) + s(0, +1) + s(+1, +1) - s(-1, -1) - s(0, -1) - s(+1, -1);
        if (nx == 0 && ny == 0) return uint8_t(lz);
        const int dot = nx * lx + ny * ly + nz * lz;
        return uint8_t(dot < 0 ? 0 : truncate(dot / std::sqrt(double(nx * nx + ny * ny + nz * nz))));
    });
}

/// The gradient's direction in degrees; not asked for where both sums are 0.
inline double cannyDirection(int a, int b) {
    constexpr double kDegrees = 57.29577951308232;
    if (a == 0) return 90;
    if (a < 0 && b > 0) return 180 - std::atan(double(b) / -a) * kDegrees;
    if (a > 0 && b < 0) return 180 - std::atan(double(-b) / a) * kDegrees;
    return std::atan(double(b) / a) * kDegrees;
}

inline uint8_t cannyByte(const Around& s, int threshold) {
    const int a = s.sumA(), b = s.sumB();
    const int m = std::min(std::abs(a) + std::abs(b), 255);
    const double direction = cannyDirection(a, b);
    int one, other;
    if (a == 0 && b == 0)
        one = s(-1, 0), other = s(+1, 0);
    else if (direction < 22.5 || direction >= 157.5)
        one = s(0, -1), other = s(0, +1);
    else if (direction < 67.5)
        one = s(+1, -1), other = s(-1, +1);
    else if (direction < 112.5)
        one = s(+1, 0), other = s(-1, 0);
    else
        one = s(+1, +1), other = s(-1, -1);
    if (m < one || m < other) return 255;
    if (m >= threshold) return uint8_t(255 - s(0, 0));
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            if ((dx || dy) && s(dx, dy) > threshold) return uint8_t(255 - s(0, 0));
    return 255;
}

inline Picture referenceCanny(const Picture& source, int blurAmount, int threshold, ChannelTarget target) {
    if (source.width() < 2 || source.height() < 2) return source;
    Picture copy = source;
    if (blurAmount >= 1) {
        const EngineOf engine(1);
        TentBlur blur(engine);
        if (target == ChannelTarget::RGB)
            EXPECT_EQ(blur.blurRGB(copy.pixels().data(), copy.height(), copy.width(), blurAmount), kStatusOk);
        else
            EXPECT_EQ(blur.blurAlpha(copy.pixels().data(), copy.height(), copy.width(), blurAmount),
                      kStatusOk);
    }
    return referenceInner(copy, source, target, [=](const Around& s) { return cannyByte(s, threshold); });
}

inline Picture referenceGlowingEdges(const Picture& source, int size, int smoothness, float brightness) {
    if (source.width() < 2 || source.height() < 2) return source;
    const int half = std::clamp(size, 0, 10), w = source.width(), h = source.height();
    Picture copy = source, result = source;
    if (smoothness > 0) {
        EXPECT_EQ(TentBlur(EngineOf(1)).blurRGBA(copy.pixels().data(), h, w, smoothness), kStatusOk);
    }
    const bool scaled = std::any_of(source.pixels().begin(), source.pixels().end(),
                                    [](const Pixel& p) { return p.alpha != 255; });
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (size_t channel = 0; channel < 3; ++channel) {
                int low = 255, high = 0;
                for (int sy = std::max(0, y - half); sy <= std::min(h - 1, y + half); ++sy)
                    for (int sx = std::max(0, x - half); sx <= std::min(w - 1, x + half); ++sx) {
                        const Pixel& p = copy.at(sx, sy);
                        const int sample =
                            scaled ? sharedTables().scaleByte[p.alpha][p[channel]] : p[channel];
                        low = std::min(low, sample);
                        high = std::max(high, sample);
                    }
                const double v = double(high - low) * brightness;
                result.at(x, y)[channel] = v <= 0 ? 0 : v > 255 ? 255 : uint8_t(truncate(v));
            }
    return result;
}

}  // namespace krl::test
