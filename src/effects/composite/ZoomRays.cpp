#include "effects/composite/ZoomRays.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "core/PixelWord.h"
#include "effects/composite/RayPlaces.h"
#include "effects/composite/RaySums.h"
#include "effects/composite/RayWords.h"

namespace krl {

namespace {

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
    /// Whether no product of a step wraps.
    bool isExact() const { return exact_; }
    /// How each coordinate grows in one step of an exact ray, in 2^-32nds. They are rounded away from 0, by
    /// less than the 46340th of a pixel in all steps of a ray, which is what a place that is no whole number
    /// lacks to the next at least.
    int64_t stepX() const { return x_.step(length_); }
    int64_t stepY() const { return y_.step(length_); }

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
        int64_t step(int32_t length) const {
            const int64_t size = ((int64_t(std::abs(d)) << 32) + length - 1) / length;
            return d < 0 ? size : -size;
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
/// direction, read one pixel of the source: 1 or 2.
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
          written_(target_.size()),
          mostSteps_(mostSteps()) {
        const double falloff = settings.falloff;
        falloff_ = scale == 1 ? settings.falloff : static_cast<float>(falloff + (1 - falloff) * 0.5);
        std::memset(static_cast<void*>(target_.data()), 0, target_.size() * sizeof(Pixel));
        std::memset(written_.data(), 0, written_.size());
        for (int32_t i = 0; i < 256; ++i) bright_[i] = truncate(i * static_cast<double>(settings.strength));
        // Below this no sum can overflow before it is limited.
        mayStopRising_ = settings.strength < 400;
        step_ = RayStep::of(bright_, settings.strength, falloff_, share_);
        makeRays();
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
        finish();
    }

    Scratch<Pixel>& target() { return target_; }

private:
    /// A ray within the field.
    struct Ray {
        int32_t *places, *sources;  ///< in the field and in the source, step by step
        Pixel* early;               ///< what it shines by in its first steps
        int32_t first;              ///< the number of its first step within
        int32_t count;              ///< of steps within
        int32_t walked;             ///< steps that it has walked alone
        int32_t written;            ///< steps that are written
        RaySums sums;
    };

    void makeRays() {
        const auto steps = static_cast<size_t>(mostSteps_);
        const size_t listed = 2 * steps + FourRays::kSoon;
        lists_ = Scratch<int32_t>(2 * FourRays::kRays * listed);
        colours_ = Scratch<Pixel>(2 * FourRays::kRays * steps);
        int32_t* list = lists_.data();
        later_ = colours_.data();
        Pixel* early = later_ + FourRays::kRays * steps;
        for (Ray& ray : rays_) {
            ray.places = list;
            ray.sources = list + listed;
            ray.early = early;
            list += 2 * listed;
            early += steps;
        }
    }

    /// Steps of a ray within, at most. Unless products wrap, the coordinate that changes more does so by 0.7
    /// or more in each.
    int32_t mostSteps() const {
        constexpr int64_t kLongestRay = 46341;
        const auto farther = [](int64_t centre, int64_t size) {
            return std::max(std::abs(centre), std::abs(centre - size));
        };
        const int64_t x = farther(centre_.x, width_), y = farther(centre_.y, height_);
        const bool mayWrap =
            x > kLongestRay || y > kLongestRay || x * x + y * y > std::numeric_limits<int32_t>::max();
        const int64_t most = 2 * int64_t(std::max(width_, height_)) + 4;
        return static_cast<int32_t>(mayWrap ? kLongestRay : std::min(most, kLongestRay));
    }

    bool isWithin(int32_t x, int32_t y) const {
        return static_cast<uint32_t>(x) < static_cast<uint32_t>(width_) &&
               static_cast<uint32_t>(y) < static_cast<uint32_t>(height_);
    }

    void cast(Point end) {
        engine_.throwIfCancelled();
        const RayPath path(centre_, end);
        if (path.length() == 0) return;
        if (!path.isExact()) finish();
        Ray& ray = rays_[held_];
        list(path, ray);
        std::fill_n(ray.places + ray.count, FourRays::kSoon, 0);
        walkAlone(ray);
        last_ = &ray;
        if (++held_ == FourRays::kRays || !path.isExact()) finish();
    }

    void list(const RayPath& path, Ray& ray) const {
        ray.first = ray.count = 0;
        if (path.isExact() && isWithin(centre_.x, centre_.y)) {
            ray.count = path.length() + 1;
            listPlaces(centre_.x, centre_.y, path.stepX(), path.stepY(), ray.count, width_, scale - 1,
                       ray.places, ray.sources);
            return;
        }
        path.walk([&](int32_t x, int32_t y, int32_t s) {
            if (!isWithin(x, y)) return;
            if (ray.count == 0) ray.first = s;
            ray.places[ray.count] = y * width_ + x;
            ray.sources[ray.count++] = y / scale * (width_ / scale) + x / scale;
        });
    }

    /// Walks the steps in which a ray runs in, or all where the four cannot walk together. What neighbours
    /// have in common near the centre is walked once.
    void walkAlone(Ray& ray) {
        const int64_t runningIn = std::clamp<int64_t>(int64_t(distance_) - ray.first, 0, ray.count);
        const int32_t steps = step_ ? static_cast<int32_t>(runningIn) : ray.count;
        ray.written = 0;
        ray.sums = {};
        if (last_ && last_ != &ray && last_->first == ray.first) {
            const int32_t most = std::min({steps, last_->walked, kRemembered});
            ray.written = static_cast<int32_t>(
                std::mismatch(ray.places, ray.places + most, last_->places).first - ray.places);
            if (ray.written > 0) ray.sums = remembered_[ray.written - 1];
        }
        for (int32_t i = ray.written; i < steps; ++i) {
            const RaySums light = lightAt(ray.sources[i]);
            ray.sums.add(light);
            const int32_t s = ray.first + i;
            if (s < distance_) runIn(ray.sums, light, distance_ - s);
            ray.sums.limit(RayStep::kMost);
            ray.early[i] = ray.sums.bytes(share_);
            ray.sums.scale(falloff_);
            if (i < kRemembered) remembered_[i] = ray.sums;
        }
        ray.walked = steps;
    }

    /// Walks the rest of the rays that are held, and writes what all leave, in their order.
    void finish() {
        if (held_ == 0) return;
        if (step_) walkTogether();
        // Side by side, so that neighbours meet in the cache. Two rays come to the same pixel within 4 steps:
        // what they move in one is up to the 1 / length part longer than a pixel, and a place is less
        // than 1.5 from its pixel's corner. A ray that is ahead of the next by more writes before it.
        constexpr int32_t kBlock = 64, kAhead = 8;
        for (int32_t end = firstStep() + kBlock; !areWritten(); end += kBlock)
            for (int32_t number = 0; number < held_; ++number)
                writeUpTo(end + kAhead * (held_ - 1 - number), number);
        held_ = 0;
    }

    int32_t firstStep() const {
        const auto earlier = [](const Ray& a, const Ray& b) { return a.first < b.first; };
        return std::min_element(rays_, rays_ + held_, earlier)->first;
    }
    bool areWritten() const {
        return std::all_of(rays_, rays_ + held_, [](const Ray& ray) { return ray.written == ray.count; });
    }

    /// Writes the steps of a ray below `end`.
    void writeUpTo(int32_t end, int32_t number) {
        Ray& ray = rays_[number];
        const int32_t last = clampTo(end - ray.first, ray.written, ray.count);
        const int32_t early = std::min(last, ray.walked);
        if (ray.written < early) {
            write(ray.places + ray.written, early - ray.written, ray.early + ray.written, 1);
            ray.written = early;
        }
        const Pixel* later = later_ + FourRays::kRays * (ray.written - ray.walked) + number;
        if (ray.written < last) write(ray.places + ray.written, last - ray.written, later, FourRays::kRays);
        ray.written = last;
    }

    void walkTogether() {
        FourRays together;
        int32_t most = 0;
        for (int32_t i = 0; i < held_; ++i) most = std::max(most, rays_[i].count - rays_[i].walked);
        for (int32_t i = 0; i < FourRays::kRays; ++i) {
            const Ray& ray = rays_[i < held_ ? i : 0];
            std::fill(ray.sources + ray.count, ray.sources + ray.walked + most + FourRays::kSoon, 0);
            together.set(i, ray.sums.words(), ray.sources + ray.walked);
        }
        together.walk(source_.data(), *step_, most, later_);
    }

    /// Writes one colour in each `stride` to the places that no ray has reached. There is no telling which,
    /// so that a choice costs less than a branch.
    void write(const int32_t* places, int32_t count, const Pixel* colours, int32_t stride) {
        Pixel* target = target_.data();
        uint8_t* written = written_.data();
        for (int32_t i = 0; i < count; ++i, colours += stride) {
            const int32_t place = places[i], soon = places[i + FourRays::kSoon];
            __builtin_prefetch(target + soon, 1);
            __builtin_prefetch(written + soon, 1);
            const uint32_t old = wordOf(target[place]), fresh = wordOf(*colours);
            const uint32_t isOld = 0u - (written[place] & 1u);
            storeWord(target[place], (old & isOld) | (fresh & ~isOld));
            written[place] = 255;
        }
    }

    RaySums lightAt(int32_t place) const {
        const Pixel p = source_[static_cast<size_t>(place)];
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
            if (mayStopRising_ && sums.unchangedOrRisenAbove(RayStep::kMost, before)) return;
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
    int32_t mostSteps_;
    std::optional<RayStep> step_;
    Scratch<int32_t> lists_;
    Scratch<Pixel> colours_;
    Ray rays_[FourRays::kRays];
    int32_t held_ = 0;
    const Ray* last_ = nullptr;
    Pixel* later_;  ///< what the rays shine by that walk together, side by side
    static constexpr int32_t kRemembered = 128;
    RaySums remembered_[kRemembered];  ///< of the last ray, after its first steps
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
