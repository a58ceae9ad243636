#include "kernels/ramp/Curve.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace krl {

namespace {

/// The tangents are this iterate, not the exact solution of their system.
constexpr int kJacobiSweeps = 10;

/// More samples than any ramp can use; only keys at absurd places ask for them.
constexpr int64_t kMostSamples = int64_t{1} << 27;

int64_t magnitude(int32_t value) { return value < 0 ? -int64_t{value} : value; }

CurveKey keyAt(CurveKey key, float position) {
    key.position = position;
    return key;
}

RampColour colourOf(const CurveKey& key) { return {key.channel(0), key.channel(1), key.channel(2)}; }

using Knots = std::vector<float>;

/// A natural cubic spline through knots in the plane. Its tangents solve a system with three diagonals.
class CurveSpline {
public:
    explicit CurveSpline(std::span<const CurveSample> knots);

    /// The samples of all segments, one after another.
    std::vector<CurveSample> samples() const;

private:
    size_t segmentCount() const { return x_.empty() ? 0 : x_.size() - 1; }
    /// Steps in which segment `i` is drawn: the longer of its two differences.
    int64_t stepsOf(size_t i) const;
    void appendSegment(size_t i, std::vector<CurveSample>& samples) const;
    void takeDifferences();
    void buildSystem();
    void solveTangents(Knots& tangent, Knots& endTangent, const Knots& difference) const;

    Knots x_, y_;       ///< knots
    Knots dx_, dy_;     ///< from each knot to the next
    Knots chordRatio_;  ///< chord of a segment over the next one's
    Knots subDiagonal_, mainDiagonal_, superDiagonal_;
    Knots tangentX_, tangentY_;
    Knots endTangentX_, endTangentY_;  ///< tangent at the far end of a segment, in its own parameter
};

CurveSpline::CurveSpline(std::span<const CurveSample> knots) {
    for (Knots* array : {&x_, &y_, &dx_, &dy_, &chordRatio_, &subDiagonal_, &mainDiagonal_, &superDiagonal_,
                         &tangentX_, &tangentY_, &endTangentX_, &endTangentY_})
        array->resize(knots.size());
    for (size_t i = 0; i < knots.size(); ++i) {
        x_[i] = static_cast<float>(knots[i].position);
        y_[i] = static_cast<float>(knots[i].value);
    }
    if (segmentCount() == 0) return;
    takeDifferences();
    buildSystem();
    solveTangents(tangentX_, endTangentX_, dx_);
    solveTangents(tangentY_, endTangentY_, dy_);
}

void CurveSpline::takeDifferences() {
    const size_t segments = segmentCount();
    std::vector<double> chord(segments);
    for (size_t i = 0; i < segments; ++i) {
        dx_[i] = static_cast<float>(double{x_[i + 1]} - x_[i]);
        dy_[i] = static_cast<float>(double{y_[i + 1]} - y_[i]);
        chord[i] = std::sqrt(double{dx_[i]} * dx_[i] + double{dy_[i]} * dy_[i]);
    }
    for (size_t i = 0; i + 1 < segments; ++i) chordRatio_[i] = static_cast<float>(chord[i] / chord[i + 1]);
    chordRatio_[segments - 1] = 1.0f;
}

void CurveSpline::buildSystem() {
    const size_t last = x_.size() - 1;
    mainDiagonal_[0] = 2.0f;
    superDiagonal_[0] = chordRatio_[0];
    for (size_t i = 1; i < last; ++i) {
        const double before = chordRatio_[i - 1];
        subDiagonal_[i] = 1.0f;
        mainDiagonal_[i] = static_cast<float>(before * 2.0 * (before + 1.0));
        superDiagonal_[i] = static_cast<float>(before * before * chordRatio_[i]);
    }
    subDiagonal_[last] = 1.0f;
    mainDiagonal_[last] = static_cast<float>(chordRatio_[last - 1] * 2.0);
}

void CurveSpline::solveTangents(Knots& tangent, Knots& endTangent, const Knots& difference) const {
    const size_t last = x_.size() - 1;
    Knots right(x_.size());
    right[0] = static_cast<float>(3.0 * difference[0]);
    for (size_t i = 1; i < last; ++i) {
        const double before = chordRatio_[i - 1];
        right[i] = static_cast<float>(3.0 * (before * before * difference[i] + difference[i - 1]));
    }
    right[last] = static_cast<float>(3.0 * difference[last - 1]);

    Knots next(x_.size());
    for (size_t i = 0; i <= last; ++i) tangent[i] = static_cast<float>(double{right[i]} / mainDiagonal_[i]);
    for (int sweep = 0; sweep < kJacobiSweeps; ++sweep) {
        for (size_t i = 0; i <= last; ++i) {
            double rest = right[i];
            if (i > 0) rest -= double{subDiagonal_[i]} * tangent[i - 1];
            if (i < last) rest -= double{superDiagonal_[i]} * tangent[i + 1];
            next[i] = static_cast<float>(rest / mainDiagonal_[i]);
        }
        std::swap(tangent, next);
    }
    for (size_t i = 0; i < last; ++i)
        endTangent[i] = static_cast<float>(double{tangent[i + 1]} * chordRatio_[i]);
}

int64_t CurveSpline::stepsOf(size_t i) const {
    return std::max({int64_t{1}, magnitude(truncate(dx_[i])), magnitude(truncate(dy_[i]))});
}

std::vector<CurveSample> CurveSpline::samples() const {
    int64_t count = 0;
    for (size_t i = 0; i < segmentCount(); ++i) count += stepsOf(i) + 1;
    if (count > kMostSamples) throw std::bad_alloc();
    std::vector<CurveSample> samples;
    samples.reserve(static_cast<size_t>(count));
    for (size_t i = 0; i < segmentCount(); ++i) appendSegment(i, samples);
    return samples;
}

/// Hermite form: p(t) = p0 + h d + a m0 + b m1, with h = (3 - 2t) t^2, a = t (t - 1)^2, b = t^2 (t - 1).
void CurveSpline::appendSegment(size_t i, std::vector<CurveSample>& samples) const {
    const double startX = x_[i], startY = y_[i];
    samples.push_back({truncate(startY), truncate(startX)});
    const int64_t steps = stepsOf(i);
    const double step = 1.0 / static_cast<double>(steps);
    for (int64_t k = 1; k <= steps; ++k) {
        const auto t = static_cast<float>(step * static_cast<double>(k));
        const double square = double{t} * t, back = t - 1.0;
        const auto h = static_cast<float>((3.0 - 2.0 * t) * square);
        const auto a = static_cast<float>(t * (back * back));
        const auto b = static_cast<float>(square * back);
        const double y = startY + double{h} * dy_[i] + double{a} * tangentY_[i] + double{b} * endTangentY_[i];
        const double x = startX + double{h} * dx_[i] + double{a} * tangentX_[i] + double{b} * endTangentX_[i];
        samples.push_back({truncate(y), truncate(x)});
    }
}

}  // namespace

void sortCurveKeys(std::span<CurveKey> keys) {
    bool swapped = true;
    for (size_t end = keys.size(); end > 1 && swapped; --end) {
        swapped = false;
        for (size_t j = 0; j + 1 < end; ++j) {
            if (!(keys[j + 1].position < keys[j].position)) continue;
            keys[j].position = static_cast<float>(truncate(keys[j].position));
            std::swap(keys[j], keys[j + 1]);
            swapped = true;
        }
    }
}

std::vector<CurveKey> padCurveKeys(std::span<const CurveKey> keys, int32_t end) {
    const auto endPosition = static_cast<float>(end);
    const auto hasKeyAt = [&](float position) {
        return std::ranges::any_of(keys, [=](const CurveKey& key) { return key.position == position; });
    };
    std::vector<CurveKey> padded;
    padded.reserve(keys.size() + 2);
    if (!hasKeyAt(0.0f)) padded.push_back(keyAt(keys.empty() ? CurveKey{} : keys.front(), 0.0f));
    padded.insert(padded.end(), keys.begin(), keys.end());
    if (!hasKeyAt(endPosition)) padded.push_back(keyAt(keys.empty() ? CurveKey{} : keys.back(), endPosition));
    for (size_t i = 1; i < padded.size(); ++i)
        if (padded[i].position == padded[i - 1].position) padded[i].position += 1.0f;
    return padded;
}

std::vector<CurveSample> buildChannelCurve(std::span<const CurveKey> keys, int32_t channel, int32_t end) {
    if (keys.empty()) return {};
    std::vector<CurveSample> knots;
    knots.reserve(keys.size() + 1);
    for (const CurveKey& key : keys) knots.push_back({key.channel(channel), truncate(key.position)});
    if (keys.back().position != static_cast<float>(end)) knots.push_back({knots.back().value, end});

    return CurveSpline(knots).samples();
}

int32_t linearKeyValue(int32_t x, int32_t segment, std::span<const CurveKey> keys, int32_t channel) {
    if (keys.size() < 2) return keys.empty() ? 0 : keys.front().channel(channel);
    const auto far = static_cast<size_t>(clampTo(segment, 1, static_cast<int32_t>(keys.size()) - 1));
    const CurveKey& from = keys[far - 1];
    const CurveKey& to = keys[far];
    const double rise = static_cast<double>(to.channel(channel)) - from.channel(channel);
    const auto slope = static_cast<float>(rise / (double{to.position} - from.position));
    const auto intercept = static_cast<float>(from.channel(channel) - double{slope} * from.position);
    return truncate(x * double{slope} + intercept);
}

std::vector<RampColour> linearRamp(std::span<const CurveKey> keys, int32_t length) {
    std::vector<RampColour> ramp;
    ramp.reserve(static_cast<size_t>(std::max(length, 0)));
    size_t segment = 0;
    for (int32_t x = 0; x < length; ++x) {
        if (segment < keys.size() && truncate(keys[segment].position) == x) {
            ramp.push_back(colourOf(keys[segment++]));
            continue;
        }
        const auto value = [&](int32_t channel) {
            return linearKeyValue(x, static_cast<int32_t>(segment), keys, channel);
        };
        ramp.push_back({value(0), value(1), value(2)});
    }
    return ramp;
}

ColourCurve::ColourCurve(std::vector<CurveKey> keys, int32_t end) {
    sortCurveKeys(keys);
    const std::vector<CurveKey> padded = padCurveKeys(keys, end);
    for (size_t channel = 0; channel < channels_.size(); ++channel) {
        channels_[channel] = buildChannelCurve(padded, static_cast<int32_t>(channel), end);
        if (channels_[channel].empty())
            channels_[channel].push_back({padded.front().channel(static_cast<int32_t>(channel)), 0});
    }
}

}  // namespace krl
