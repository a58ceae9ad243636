#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/ExactDivision.h"
#include "core/Numbers.h"

/// The moving tent: what one step along a line costs and keeps, for one lane or many side by side.
///
/// A tent of half-width r weighs the sample at distance i from its centre by r + 1 - |i|. Going one
/// sample further changes its sum by a slope, and the slope by the second difference
/// `entering - 2 * centre + leaving`. So a lane keeps two numbers, whatever r is. Samples before the
/// first and after the last of a line are those two, repeated without end.
namespace krl::tent {

/// No window is wider to a side than this: its sums still fit 64 bits, and on any picture both ends
/// of a line have long come to weigh the same.
inline constexpr int32_t kWidest = 100'000'000;

/// Half-width of the window for a caller's `radius`: 0.72 of it, rounded half away from zero.
inline int32_t halfWidth(int32_t radius) {
    const double scaled = radius * 0.72;
    return std::min(truncate(scaled >= 0 ? scaled + 0.5 : scaled - 0.5), kWidest);
}

/// Sum of the weights of a window.
constexpr int64_t weightOf(int32_t halfWidth) { return (halfWidth + int64_t{1}) * (halfWidth + int64_t{1}); }

/// Bytes, whose sums are kept for `Quotient` and divided by it.
template <class Quotient>
class Bytes {
public:
    using Sample = uint8_t;
    using Sum = typename Quotient::Sum;

    explicit Bytes(int32_t halfWidth) : divide_(static_cast<uint64_t>(weightOf(halfWidth))) {}
    Sum kept(Sum sum) const { return divide_.kept(sum); }
    Sum scaled(Sum difference) const { return divide_.scaled(difference); }
    uint8_t quotient(Sum keptSum) const { return divide_(keptSum); }

private:
    Quotient divide_;
};

/// Bytes under windows up to `kWidestShort`, whose sums fit 16 bits, up to `kWidestMiddle`, whose sums fit a
/// float, up to `kWidestNarrow`, whose sums fit 32 bits, and under wider ones.
using ShortBytes = Bytes<ShortByteQuotient>;
using MiddleBytes = Bytes<MiddleByteQuotient>;
using NarrowBytes = Bytes<ByteQuotient>;
using WideBytes = Bytes<WideByteQuotient>;
inline constexpr int32_t kWidestShort = 15;
inline constexpr int32_t kWidestMiddle = 126;
inline constexpr int32_t kWidestNarrow = 2895;
static_assert(weightOf(kWidestShort) <= int64_t{ShortByteQuotient::kLargestWeight});
static_assert(weightOf(kWidestMiddle) <= int64_t{MiddleByteQuotient::kLargestWeight});
static_assert(weightOf(kWidestNarrow) <= int64_t{ByteQuotient::kLargestWeight});

/// The samples whose second difference moves a window one place on.
template <class Sample>
struct Step {
    const Sample *entering, *centre, *leaving;
};

/// A line of places, `stride` samples apart, each with one or more lanes side by side.
template <class Sample>
struct Line {
    const Sample* first;
    ptrdiff_t stride;
    int32_t length;

    const Sample* at(int32_t place) const { return first + place * stride; }
    const Sample* last() const { return at(length - 1); }
    Step<Sample> stepFrom(int32_t place, int32_t halfWidth) const {
        return {at(std::min(place + halfWidth + 2, length - 1)), at(std::min(place + 1, length - 1)),
                at(std::max(place - halfWidth, 0))};
    }
};

/// Moves lanes side by side one place on: writes their means, and changes sums and slopes. The lanes are
/// marked
/// `__restrict`: there are too many pointers for the compiler's alias checks.
template <class Arithmetic>
inline void stepLanes(const Arithmetic& arithmetic, typename Arithmetic::Sum* __restrict sums,
                      typename Arithmetic::Sum* __restrict slopes,
                      typename Arithmetic::Sample* __restrict means, Step<typename Arithmetic::Sample> step,
                      int lanes) {
    using Sum = typename Arithmetic::Sum;
    for (int i = 0; i < lanes; ++i) {
        const auto bend =
            static_cast<Sum>(Sum(step.entering[i]) - 2 * Sum(step.centre[i]) + Sum(step.leaving[i]));
        means[i] = arithmetic.quotient(sums[i]);
        sums[i] = static_cast<Sum>(sums[i] + slopes[i]);
        slopes[i] = static_cast<Sum>(slopes[i] + arithmetic.scaled(bend));
    }
}

/// Lanes that walk along rows together: those of 64 rows of bytes, or of 16 rows of pixels.
inline constexpr int32_t kTransposedLanes = 64;

/// `stepLanes` for bytes whose sums fit 32 bits, in the widest vectors that there are.
template <class Arithmetic>
void stepManyLanes(const Arithmetic& arithmetic, typename Arithmetic::Sum* sums,
                   typename Arithmetic::Sum* slopes, uint8_t* means, Step<uint8_t> step, int lanes);

/// The same for `kTransposedLanes` lanes at every place of `line` from `first` up to `end`; the means of one
/// place follow those of the other.
template <class Arithmetic>
void walkTransposed(const Arithmetic& arithmetic, typename Arithmetic::Sum* sums,
                    typename Arithmetic::Sum* slopes, uint8_t* means, const Line<uint8_t>& line,
                    int32_t halfWidth, int32_t first, int32_t end);

/// Whether an arithmetic has the two above.
template <class Arithmetic>
constexpr bool kInVectors = sizeof(typename Arithmetic::Sum) <= sizeof(uint32_t);

/// Sums and slopes of windows side by side.
template <class Sum>
struct WindowSums {
    Sum *sums, *slopes;
    int lanes;
};

/// Begins windows at `place` of lines with `length` places; `at(place)` has a sample for each lane.
template <class Arithmetic, class At>
void beginWindows(const Arithmetic& arithmetic, const WindowSums<typename Arithmetic::Sum>& windows,
                  int32_t place, int32_t length, int32_t halfWidth, At&& at) {
    using Sum = typename Arithmetic::Sum;
    Sum *const sums = windows.sums, *const slopes = windows.slopes;
    const int lanes = windows.lanes;
    const auto add = [](Sum& to, Sum amount) { to = static_cast<Sum>(to + amount); };
    // One side, from the place outward: weighted into the sums and plain into the slopes. What is past the
    // end of the line comes all at once.
    const auto addSide = [&](int32_t direction, int32_t reach) {
        const int32_t inside = std::min(halfWidth, reach);
        for (int32_t distance = 1; distance <= inside; ++distance) {
            const auto* samples = at(place + direction * distance);
            for (int i = 0; i < lanes; ++i) {
                add(slopes[i], Sum(samples[i]));
                add(sums[i], slopes[i]);
            }
        }
        const int64_t outside = halfWidth - inside;
        const auto* samples = at(place + direction * inside);
        for (int i = 0; i < lanes && outside > 0; ++i) {
            const Sum last = Sum(samples[i]);
            add(sums[i], Sum(slopes[i] * Sum(outside) + last * Sum(outside * (outside + 1) / 2)));
            add(slopes[i], Sum(last * Sum(outside)));
        }
    };
    std::fill_n(sums, lanes, Sum{0});
    std::fill_n(slopes, lanes, Sum{0});
    addSide(-1, place);
    // The next slope has neither the left side nor the place itself. The right side adds slopes to the sums,
    // so these get beforehand what that will take.
    const auto* own = at(place);
    for (int i = 0; i < lanes; ++i) {
        const Sum leaving = static_cast<Sum>(slopes[i] + own[i]);
        add(sums[i], Sum(leaving * Sum(halfWidth) + own[i] * Sum(Sum(halfWidth) + 1)));
        slopes[i] = static_cast<Sum>(Sum{0} - leaving);
    }
    addSide(1, length - 1 - place);
    const auto* entering = at(std::min(place + halfWidth + 1, length - 1));
    for (int i = 0; i < lanes; ++i) {
        sums[i] = arithmetic.kept(sums[i]);
        slopes[i] = arithmetic.scaled(static_cast<Sum>(slopes[i] + entering[i]));
    }
}

/// The windows of `Lanes` lanes side by side that walk along a line from its beginning.
template <class Arithmetic, int Lanes>
class Window {
public:
    using Sample = typename Arithmetic::Sample;
    using Sum = typename Arithmetic::Sum;

    Window(const Arithmetic& arithmetic, const Line<Sample>& line, int32_t halfWidth)
        : arithmetic_(arithmetic) {
        beginWindows(arithmetic, WindowSums<Sum>{sums_, slopes_, Lanes}, 0, line.length, halfWidth,
                     [&](int32_t place) { return line.at(place); });
    }

    /// Writes the means at this place to `means` and goes one place on.
    void step(Sample* means, Step<Sample> step) {
        stepLanes(arithmetic_, sums_, slopes_, means, step, Lanes);
    }

    /// The same for every place of `line` from `first`, where it is, up to `end`.
    void walkOn(Sample* means, const Line<Sample>& line, int32_t halfWidth, int32_t first, int32_t end) {
        static_assert(Lanes == kTransposedLanes);
        walkTransposed(arithmetic_, sums_, slopes_, means, line, halfWidth, first, end);
    }

private:
    static constexpr size_t kAlignment = Lanes > 4 ? 64 : alignof(Sum);

    const Arithmetic arithmetic_;
    alignas(kAlignment) Sum sums_[Lanes];
    alignas(kAlignment) Sum slopes_[Lanes];
};

}  // namespace krl::tent
