#include "warp/Waves.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "warp/PositionWarp.h"
#include "warp/Trigonometry.h"

namespace krl {

namespace {

float radiansPerPixel(float frequency) { return static_cast<float>(frequency * kRadiansPerDegree); }

/// Shift of each of `count` rows or columns.
std::vector<float> shifts(int32_t count, float frequency, float phase, float amplitude) {
    std::vector<float> table(static_cast<size_t>(std::max(count, 0)));
    for (int32_t i = 0; i < count; ++i) {
        const auto angle = static_cast<float>(static_cast<double>(i) * frequency + phase);
        const auto height = static_cast<float>(sine(angle));
        table[static_cast<size_t>(i)] = static_cast<float>(static_cast<double>(height) * amplitude);
    }
    return table;
}

/// Where along a line of `length` pixels each pixel comes from, one after another: the line's shift,
/// plus 1 for each pixel passed, with the edge rule in between. `wrapPeriod` is that of the bilinear wrap.
template <SampleQuality quality, WaveEdge edge>
class ShiftedLine {
public:
    ShiftedLine() = default;
    ShiftedLine(float shift, int32_t length, int32_t wrapPeriod)
        : place_(shift),
          length_(static_cast<float>(length)),
          period_(static_cast<float>(wrapPeriod)),
          wholeLength_(length) {}

    /// The source of the next pixel: a place for bilinear sampling, a whole number for the other.
    auto next() {
        if constexpr (quality == SampleQuality::Bilinear && edge == WaveEdge::Wrap) {
            if (place_ < 0)
                place_ += period_;
            else if (place_ > length_)
                place_ -= period_;
            return std::exchange(place_, place_ + 1.0f);
        } else {
            const float place = std::exchange(place_, place_ + 1.0f);
            if constexpr (quality == SampleQuality::Bilinear)
                return place < 0 ? 0.0f : place >= length_ ? length_ - 1.0f : place;
            else
                return nearest(place);
        }
    }

private:
    int32_t nearest(float place) const {
        const int32_t index = truncate(place);
        if constexpr (edge == WaveEdge::Wrap) {
            if (index < 0) return wrapAdd(index, wholeLength_ - 1);
            return index >= wholeLength_ ? index - wholeLength_ + 1 : index;
        }
        if (index < 0) return 0;
        return place >= length_ ? wholeLength_ - 1 : index;
    }

    float place_ = 0, length_ = 0, period_ = 0;
    int32_t wholeLength_ = 0;
};

/// The two passes, for one sampler and one edge rule.
template <SampleQuality quality, WaveEdge edge, class Sampler>
class WavePasses {
public:
    WavePasses(const ImageBuffer& image, const Sampler& sampler) : image_(image), sampler_(sampler) {}

    Status alongRows(const ImageEngine& engine, const std::vector<float>& rowShifts) const {
        return forEachRow(engine, [&](Pixel* row, int32_t y) {
            ShiftedLine<quality, edge> line(rowShifts[static_cast<size_t>(y)], image_.width, image_.width);
            for (int32_t x = 0; x < image_.width; ++x) sampler_.alongRow(row[x], y, line.next());
        });
    }

    Status downColumns(const ImageEngine& engine, const std::vector<float>& columnShifts) const {
        return forEachColumnTile(engine, [&](IndexRange columns) {
            ShiftedLine<quality, edge> lines[kTileColumns];
            for (int32_t x = columns.first; x < columns.last; ++x)
                lines[x - columns.first] = {columnShifts[static_cast<size_t>(x)], image_.height,
                                            image_.height - 1};
            for (int32_t y = 0; y < image_.height; ++y) {
                Pixel* row = image_.row(y);
                for (int32_t x = columns.first; x < columns.last; ++x)
                    sampler_.downColumn(row[x], lines[x - columns.first].next(), x);
            }
        });
    }

private:
    const ImageBuffer& image_;
    const Sampler& sampler_;
};

}  // namespace

Status waves(ImageEngine& engine, float amplitude, float frequency, float horizPhase, float vertPhase,
             int32_t hPercent, int32_t vPercent, WaveEdge edgeType, SampleQuality quality,
             ChannelTarget colourOrAlpha) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const float radians = radiansPerPixel(frequency);
    const auto share = [&](int32_t percent) {
        return static_cast<float>(static_cast<double>(amplitude) * percent / 100);
    };
    const std::vector<float> columnShifts = shifts(image.width, radians, vertPhase, share(vPercent));
    const std::vector<float> rowShifts = shifts(image.height, radians, horizPhase, share(hPercent));
    ImageCopy source(image);
    return withSampler(source.view(), quality, colourOrAlpha, [&](const auto& sampler) {
        const auto run = [&](const auto& passes) {
            if (Status status = passes.alongRows(engine, rowShifts)) return status;
            source.refresh(image);
            return passes.downColumns(engine, columnShifts);
        };
        using Sampler = std::decay_t<decltype(sampler)>;
        constexpr SampleQuality chosen = Sampler::kQuality;
        if (edgeType == WaveEdge::Wrap)
            return run(WavePasses<chosen, WaveEdge::Wrap, Sampler>(image, sampler));
        return run(WavePasses<chosen, WaveEdge::Repeat, Sampler>(image, sampler));
    });
}

Status blockWaves(ImageEngine& engine, float amplitude, float frequency, float horizPhase, float vertPhase,
                  SampleQuality quality, ChannelTarget colourOrAlpha) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const double height = amplitude < 0 ? 0.0f : amplitude;
    const double radians = radiansPerPixel(frequency);
    const auto map = [&](int32_t count, auto wave, float phase) {
        std::vector<float> table(static_cast<size_t>(std::max(count, 0)));
        for (int32_t i = 0; i < count; ++i)
            table[static_cast<size_t>(i)] =
                heldInside(static_cast<float>(wave((count / 2 - i) * radians + phase) * height + i), count);
        return table;
    };
    const std::vector<float> mapX = map(image.width, sine, horizPhase);
    const std::vector<float> mapY = map(image.height, cosine, vertPhase);
    const ImageCopy source(image);
    return withSampler(source.view(), quality, colourOrAlpha, [&](const auto& sampler) {
        return forEachRow(engine, [&](Pixel* row, int32_t y) {
            const float placeY = mapY[static_cast<size_t>(y)];
            for (int32_t x = 0; x < image.width; ++x) sampler(row[x], placeY, mapX[static_cast<size_t>(x)]);
        });
    });
}

namespace {

/// Angle of the wave at distance (`dx`, `dy`) from its centre. The wide path rounds every step to single
/// precision, the plain one the squares alone.
template <bool wide>
double angleAtDistance(double dx, double dy, float radians, float phase) {
    const auto squareY = static_cast<float>(dy * dy);
    if constexpr (wide) {
        const auto squareX = static_cast<float>(dx * dx);
        return std::sqrt(squareX + squareY) * radians + phase;
    } else {
        const auto sum = static_cast<float>(dx * dx + squareY);
        return std::sqrt(static_cast<double>(sum)) * radians + phase;
    }
}

}  // namespace

Status circularWaves(ImageEngine& engine, float amplitude, float frequency, float phase, Point origin,
                     SampleQuality quality, ChannelTarget colourOrAlpha) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const double height = amplitude < 0 ? 0.0f : amplitude;
    const float radians = radiansPerPixel(frequency);
    return warpByPosition(engine, quality, colourOrAlpha, [&](int32_t y, int32_t first, PositionRun& run) {
        const double dy = wrapSubtract(origin.y, y);
        double angles[kRunPixels], sines[kRunPixels], cosines[kRunPixels];
        for (size_t i = 0; i < run.count; ++i) {
            const double dx = wrapSubtract(origin.x, first + static_cast<int32_t>(i));
            angles[i] = engine.useWidePath() ? angleAtDistance<true>(dx, dy, radians, phase)
                                             : angleAtDistance<false>(dx, dy, radians, phase);
        }
        sinesAndCosines(angles, sines, cosines, run.count);
        for (size_t i = 0; i < run.count; ++i) {
            const int32_t x = first + static_cast<int32_t>(i);
            run.x[i] = heldInside(static_cast<float>(sines[i] * height + x), image.width);
            run.y[i] = heldInside(static_cast<float>(cosines[i] * height + y), image.height);
        }
    });
}

}  // namespace krl
