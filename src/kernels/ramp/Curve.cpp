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

    CurveSpline spline(knots);
    spline.solve();
    const int64_t count = spline.countSamples();
    if (count > kMostSamples) throw std::bad_alloc();
    std::vector<CurveSample> samples(static_cast<size_t>(count));
    int64_t counter = 0;
    spline.sample(samples.data(), counter);
    return samples;
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

/// One span: the way it goes, its tangents at both ends, and in how many steps it is drawn.
struct CurveSpline::HermiteSegment {
    float dx, dy;
    float startTangentX, startTangentY, endTangentX, endTangentY;
    int64_t steps;

    HermiteSegment(float dxIn, float dyIn, float startX, float startY, float endX, float endY)
        : dx(dxIn),
          dy(dyIn),
          startTangentX(startX),
          startTangentY(startY),
          endTangentX(endX),
          endTangentY(endY),
          steps(std::max<int64_t>(1, std::max(magnitude(truncate(dx)), magnitude(truncate(dy))))) {}
};

CurveSpline::CurveSpline(std::span<const CurveSample> knots)
    : knotCount_(static_cast<int32_t>(knots.size())) {
    for (Knots* array : {&x_, &y_, &dx_, &dy_, &tangentX_, &tangentY_, &endTangentX_, &endTangentY_,
                         &chordRatio_, &subDiagonal_, &mainDiagonal_, &superDiagonal_})
        array->resize(knots.size());
    for (size_t i = 0; i < knots.size(); ++i) {
        x_[i] = static_cast<float>(knots[i].position);
        y_[i] = static_cast<float>(knots[i].value);
    }
}

void CurveSpline::solve() {
    if (knotCount_ < 2) return;
    takeDifferences();
    buildSystem();
    solveTangents(tangentX_, endTangentX_, dx_);
    solveTangents(tangentY_, endTangentY_, dy_);
}

void CurveSpline::takeDifferences() {
    const size_t spans = x_.size() - 1;
    std::vector<double> chord(spans);
    for (size_t i = 0; i < spans; ++i) {
        dx_[i] = static_cast<float>(double{x_[i + 1]} - x_[i]);
        dy_[i] = static_cast<float>(double{y_[i + 1]} - y_[i]);
        chord[i] = std::sqrt(double{dx_[i]} * dx_[i] + double{dy_[i]} * dy_[i]);
    }
    for (size_t i = 0; i + 1 < spans; ++i) chordRatio_[i] = static_cast<float>(chord[i] / chord[i + 1]);
    chordRatio_[spans - 1] = 1.0f;
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

CurveSpline::HermiteSegment CurveSpline::segment(int32_t span) const {
    const auto i = static_cast<size_t>(span);
    return {dx_[i], dy_[i], tangentX_[i], tangentY_[i], endTangentX_[i], endTangentY_[i]};
}

int64_t CurveSpline::countSamples() const {
    int64_t count = 0;
    for (int32_t span = 0; span + 1 < knotCount_; ++span) count += segment(span).steps + 1;
    return count;
}

void CurveSpline::sample(CurveSample* out, int64_t& counter) const {
    for (int32_t span = 0; span + 1 < knotCount_; ++span) {
        const HermiteSegment s = segment(span);
        const double startX = x_[static_cast<size_t>(span)], startY = y_[static_cast<size_t>(span)];
        out[counter++] = {truncate(startY), truncate(startX)};
        const double step = 1.0 / static_cast<double>(s.steps);
        for (int64_t k = 1; k <= s.steps; ++k) {
            const auto t = static_cast<float>(step * static_cast<double>(k));
            const double square = double{t} * t, back = t - 1.0;
            const auto h = static_cast<float>((3.0 - 2.0 * t) * square);
            const auto a = static_cast<float>(t * (back * back));
            const auto b = static_cast<float>(square * back);
            const double y =
                startY + double{h} * s.dy + double{a} * s.startTangentY + double{b} * s.endTangentY;
            const double x =
                startX + double{h} * s.dx + double{a} * s.startTangentX + double{b} * s.endTangentX;
            out[counter++] = {truncate(y), truncate(x)};
        }
    }
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
