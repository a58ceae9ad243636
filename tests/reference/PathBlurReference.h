#pragma once

#include <cmath>
#include <functional>

#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "krlimage/blur.h"
#include "support/Picture.h"

/// Path blurs sample by sample: every coordinate by its own sine and cosine, every sum in order.
namespace krl::test {

inline int limitedPlace(int place, int size) { return place < 0 ? 0 : place >= size ? size - 1 : place; }

/// Sums of one path as the three reductions use them; those of colour are of type `Sum`.
template <class Sum>
struct ReferenceSums {
    int count = 0, alpha = 0;
    Sum colour[3] = {}, scaled[3] = {};
    float weight = 0;

    void add(const Pixel& p, bool dimmed) {
        ++count;
        for (size_t c = 0; c < 3; ++c) {
            colour[c] += Sum(p[c]);
            scaled[c] += Sum(dimmed ? p[c] * p.alpha >> 8 : sharedTables().scaleByte[p.alpha][p[c]]);
        }
        alpha += p.alpha;
        weight += sharedTables().unitFromByte[p.alpha];
    }
    /// The reduced pixel; false where the weight is 0.
    bool reduce(ChannelTarget target, Pixel& p) const {
        if (target == ChannelTarget::RGBA) {
            if (weight == 0) return false;
            for (size_t c = 0; c < 3; ++c)
                p[c] = uint8_t(truncate(clampTo(double(scaled[c]) / double(weight), 0.0, 255.0)));
            p.alpha = uint8_t(alpha / count);
        } else if (target == ChannelTarget::RGB) {
            for (size_t c = 0; c < 3; ++c) p[c] = uint8_t(truncate(double(colour[c]) / count));
        } else {
            p.alpha = uint8_t(alpha / count);
        }
        return true;
    }
};

inline Picture referenceTrail(const Picture& copy, int distance, int angle, ChannelTarget target) {
    const float a = float(angle * 0.017453292519943295);
    const float cosine = float(std::cos(double(a))), sine = float(std::sin(double(a)));
    Picture result = copy;
    for (int y = 0; y < copy.height(); ++y)
        for (int x = 0; x < copy.width(); ++x) {
            ReferenceSums<int> sums;
            for (int i = 0; i < distance; ++i)
                sums.add(copy.at(limitedPlace(x + truncate(double(i) * cosine), copy.width()),
                                 limitedPlace(y + truncate(double(i) * sine), copy.height())),
                         true);
            sums.reduce(target, result.at(x, y));
        }
    return result;
}

inline Picture referenceMotionBlur(const Picture& source, int distance, int angle, BlurCount blurCount,
                                   ChannelTarget target) {
    if (distance < 1) return source;
    const Picture first = referenceTrail(source, distance, angle, target);
    return blurCount == BlurCount::Single ? first : referenceTrail(first, distance, angle + 180, target);
}

/// Sums of colour are in single precision.
inline Picture referenceRadialBlur(const Picture& copy, int radialLength, Point point, ChannelTarget target) {
    if (radialLength < 1) return copy;
    Picture result = copy;
    for (int y = 0; y < copy.height(); ++y)
        for (int x = 0; x < copy.width(); ++x) {
            const int dx = point.x - x, dy = point.y - y;
            const double r = std::sqrt(double(dx * dx + dy * dy));
            const float a = float(std::atan2(double(dy), double(dx)));
            ReferenceSums<float> sums;
            for (int i = -radialLength; i <= radialLength; ++i) {
                const double t = i * 0.017453292519943295 + a;
                sums.add(copy.at(limitedPlace(truncate(point.x - std::cos(t) * r), copy.width()),
                                 limitedPlace(truncate(point.y - std::sin(t) * r), copy.height())),
                         false);
            }
            sums.reduce(target, result.at(x, y));
        }
    return result;
}

inline Picture referenceZoomBlur(const Picture& copy, int zoomLength, Point point, ZoomDirection direction,
                                 ChannelTarget target) {
    const auto nearest = [](double v) { return truncate(v < 0 ? v - 0.5 : v + 0.5); };
    const int w = copy.width(), h = copy.height();
    const double scale = (1 / std::sqrt(double(h * h + w * w))) * zoomLength;
    Picture result = copy;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int dx = point.x - x, dy = point.y - y;
            const double r = std::sqrt(double(dx * dx + dy * dy)), a = std::atan2(double(dy), double(dx));
            const int count = truncate(r * scale);
            if (count <= 0) continue;
            ReferenceSums<int> sums;
            for (int k = 0; k < count; ++k) {
                const double d = direction == ZoomDirection::Out ? r - k : r + k;
                sums.add(copy.at(limitedPlace(nearest(point.x - std::cos(a) * d), w),
                                 limitedPlace(nearest(point.y - std::sin(a) * d), h)),
                         false);
            }
            if (!sums.reduce(target, result.at(x, y))) result.at(x, y).alpha = uint8_t(sums.alpha / count);
        }
    return result;
}

}  // namespace krl::test
