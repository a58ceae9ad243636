#include "effects/composite/ZoomRays.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "effects/composite/RaySums.h"

namespace krl {

namespace {

constexpr int32_t kMostLight = 25500;

/// The places of a ray from the centre to an end, one for each step s from 0 to its length:
/// `centre - d * s / length`, truncated toward the centre.
class RayPath {
public:
    RayPath(Point centre, Point end)
        : x_{centre.x, wrapSubtract(centre.x, end.x)}, y_{centre.y, wrapSubtract(centre.y, end.y)} {
        const int64_t squares = square(x_.d) + square(y_.d);
        exact_ = squares <= std::numeric_limits<int32_t>::max();
        // Far centres overflow the sum of squares, which wraps; below 0 it has no root and no ray.
        const int32_t sum = wrapAdd(wrapMultiply(x_.d, x_.d), wrapMultiply(y_.d, y_.d));
        length_ = sum < 0 ? 0 : truncate(std::sqrt(static_cast<double>(sum)));
    }

    int32_t length() const { return length_; }

    /// Calls `visit(x, y, s)` at every step.
    template <class Visit>
    void walk(Visit&& visit) const {
        if (exact_) return walkExact(visit);
        for (int32_t s = 0; s <= length_; ++s) visit(x_.at(s, length_), y_.at(s, length_), s);
    }

private:
    struct Axis {
        int32_t start, d;

        int32_t at(int32_t s, int32_t length) const {
            return wrapSubtract(start, wrapMultiply(d, s) / length);
        }
    };
    /// An axis on its way. It moves by one at most in a step, as `d` is no longer than the ray.
    struct Walker {
        int32_t place, size, direction, rest = 0;

        explicit Walker(Axis axis)
            : place(axis.start), size(std::abs(axis.d)), direction(axis.d < 0 ? 1 : -1) {}
        void step(int32_t length) {
            rest += size;
            const bool moves = rest >= length;
            place += moves ? direction : 0;
            rest -= moves ? length : 0;
        }
    };

    static int64_t square(int32_t d) { return int64_t(d) * d; }

    template <class Visit>
    void walkExact(Visit&& visit) const {
        Walker x(x_), y(y_);
        for (int32_t s = 0; s <= length_; ++s) {
            visit(x.place, y.place, s);
            x.step(length_);
            y.step(length_);
        }
    }

    Axis x_, y_;
    bool exact_;
    int32_t length_;
};

/// The picture that rays run through and what they leave. `scale` is how many pixels of the field, in each
/// direction, read one pixel of the source.
template <int32_t scale>
class RayField {
public:
    RayField(const ImageEngine& engine, const Scratch<Pixel>& source, int32_t width, int32_t height,
             const RaySettings& settings)
        : engine_(engine),
          source_(source),
          width_(width * scale),
          height_(height * scale),
          centre_{wrapMultiply(settings.centre.y, scale), wrapMultiply(settings.centre.x, scale)},
          distance_(wrapMultiply(settings.userDistance, scale)),
          share_(static_cast<float>(1.0 / distance_)),
          target_(static_cast<size_t>(width_) * static_cast<size_t>(height_)),
          written_(target_.size()) {
        const double falloff = settings.falloff;
        falloff_ = scale == 1 ? settings.falloff : static_cast<float>(falloff + (1 - falloff) * 0.5);
        std::memset(static_cast<void*>(target_.data()), 0, target_.size() * sizeof(Pixel));
        std::memset(written_.data(), 0, written_.size());
        for (int32_t i = 0; i < 256; ++i) bright_[i] = truncate(i * static_cast<double>(settings.strength));
        // Below this no sum can overflow before it is limited.
        mayStopRising_ = settings.strength < 400;
    }

    /// The rays to each edge: the bottom upward along its indices, the right downward, the top downward, the
    /// left upward. The first to reach a pixel decides it.
    void castAll() {
        if (centre_.y <= height_ - 1)
            for (int32_t i = 0; i < width_; ++i) cast({height_ - 1, i});
        if (centre_.x <= width_ - 1)
            for (int32_t i = height_ - 1; i >= 0; --i) cast({i, width_ - 1});
        if (centre_.y >= 0)
            for (int32_t i = width_ - 1; i >= 0; --i) cast({0, i});
        if (centre_.x >= 0)
            for (int32_t i = 0; i < height_; ++i) cast({i, 0});
    }

    Scratch<Pixel>& target() { return target_; }

private:
    void cast(Point end) {
        engine_.throwIfCancelled();
        const RayPath path(centre_, end);
        if (path.length() == 0) return;
        RaySums sums;
        path.walk([&](int32_t x, int32_t y, int32_t s) {
            const bool inside = static_cast<uint32_t>(x) < static_cast<uint32_t>(width_) &&
                                static_cast<uint32_t>(y) < static_cast<uint32_t>(height_);
            if (!inside) return;
            const RaySums light = lightAt(x, y);
            sums.add(light);
            if (s < distance_) runIn(sums, light, distance_ - s);
            sums.limit(kMostLight);
            const size_t place =
                static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x);
            if (!written_[place]) {
                target_[place] = sums.bytes(share_);
                written_[place] = 255;
            }
            sums.scale(falloff_);
        });
    }

    RaySums lightAt(int32_t x, int32_t y) const {
        const size_t row = static_cast<size_t>(y / scale), column = static_cast<size_t>(x / scale);
        const Pixel p = source_[row * static_cast<size_t>(width_ / scale) + column];
        return {bright_[p.blue], bright_[p.green], bright_[p.red], bright_[p.alpha]};
    }

    /// Fades and adds the same light `rounds` times, as if the ray had come a longer way. The sums settle, or
    /// go round in a circle where they overflow, or rise above what counts; none of these needs all rounds.
    void runIn(RaySums& sums, const RaySums& light, int32_t rounds) const {
        RaySums remembered = sums;
        for (int64_t passed = 0, span = 1; rounds > 0; --rounds) {
            const RaySums before = sums;
            sums.scale(falloff_);
            sums.add(light);
            if (mayStopRising_ && sums.unchangedOrRisenAbove(kMostLight, before)) return;
            ++passed;
            if (sums == remembered) rounds = static_cast<int32_t>((rounds - 1) % passed) + 1;
            if (passed == span) {
                remembered = sums;
                span *= 2;
                passed = 0;
            }
        }
    }

    const ImageEngine& engine_;
    const Scratch<Pixel>& source_;
    int32_t width_, height_;
    Point centre_;
    int32_t distance_;
    float share_, falloff_ = 0;
    bool mayStopRising_;
    int32_t bright_[256];
    Scratch<Pixel> target_;
    Scratch<uint8_t> written_;
};

}  // namespace

void castZoomRays(const ImageEngine& engine, Scratch<Pixel>& light, int32_t width, int32_t height,
                  const RaySettings& settings) {
    RayField<1> field(engine, light, width, height, settings);
    field.castAll();
    std::copy(field.target().begin(), field.target().end(), light.begin());
}

void castZoomRaysAntialiased(const ImageEngine& engine, Scratch<Pixel>& light, int32_t width, int32_t height,
                             const RaySettings& settings) {
    RayField<2> field(engine, light, width, height, settings);
    field.castAll();
    const Pixel* upper = field.target().data();
    Pixel* out = light.data();
    for (int32_t y = 0; y < height; ++y, upper += 4 * static_cast<ptrdiff_t>(width)) {
        const Pixel* lower = upper + 2 * static_cast<ptrdiff_t>(width);
        const auto mean = [&](int32_t x, size_t c) {
            const int32_t sum = upper[2 * x][c] + upper[2 * x + 1][c] + lower[2 * x][c] + lower[2 * x + 1][c];
            return static_cast<uint8_t>(sum / 4);
        };
        for (int32_t x = 0; x < width; ++x) *out++ = {mean(x, 0), mean(x, 1), mean(x, 2), mean(x, 3)};
    }
}

}  // namespace krl
