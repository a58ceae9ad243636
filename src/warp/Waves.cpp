#include "warp/Waves.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/Bands.h"
#include "core/Clones.h"
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

/// Where along a line of `length` pixels each pixel comes from, one after another: the line's shift, plus 1
/// for each pixel passed, with the edge rule in between. `wrapPeriod` is that of the bilinear wrap.
template <SampleQuality quality, WaveEdge edge>
class LineWalk {
public:
    LineWalk(int32_t length, int32_t wrapPeriod)
        : length_(static_cast<float>(length)),
          period_(static_cast<float>(wrapPeriod)),
          wholeLength_(length) {}

    /// The source of the pixel at `place`, which moves on to the next: a place for bilinear sampling, a whole
    /// number for the other.
    auto next(float& place) const {
        if constexpr (quality == SampleQuality::Bilinear && edge == WaveEdge::Wrap)
            place = place < 0 ? place + period_ : place > length_ ? place - period_ : place;
        const float here = place;
        place = here + 1.0f;
        if constexpr (quality == SampleQuality::Standard)
            return nearest(here);
        else if constexpr (edge == WaveEdge::Wrap)
            return here;
        else
            return here < 0 ? 0.0f : here >= length_ ? length_ - 1.0f : here;
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

    float length_, period_;
    int32_t wholeLength_;
};

/// The two passes, for one sampler and one edge rule.
template <WaveEdge edge, class Sampler>
class WavePasses {
public:
    WavePasses(const ImageBuffer& image, const Sampler& sampler) : image_(image), sampler_(sampler) {}

    Status alongRows(const ImageEngine& engine, const std::vector<float>& rowShifts) const {
        const Walk walk(image_.width, image_.width);
        return forEachRow(engine, [&](Pixel* row, int32_t y) {
            float place = rowShifts[static_cast<size_t>(y)];
            forEachRun(image_.width, [&](int32_t first, size_t count) {
                Place places[kRunPixels];
                for (size_t i = 0; i < count; ++i) places[i] = walk.next(place);
                sampler_.alongRow(row + first, y, places, count);
            });
        });
    }

    /// Runs of neighbouring columns walk down together.
    Status downColumns(const ImageEngine& engine, const std::vector<float>& columnShifts) const {
        const Walk walk(image_.height, image_.height - 1);
        return forEachColumnRange(engine, [&](IndexRange columns) {
            forEachRun(columns.last - columns.first, [&](int32_t offset, size_t count) {
                const int32_t first = columns.first + offset;
                float walking[kRunPixels];
                std::copy_n(columnShifts.begin() + first, count, walking);
                for (int32_t y = 0; y < image_.height; ++y) {
                    Place places[kRunPixels];
                    for (size_t i = 0; i < count; ++i) places[i] = walk.next(walking[i]);
                    sampler_.downColumns(image_.row(y) + first, places, first, count);
                }
            });
        });
    }

private:
    using Walk = LineWalk<Sampler::kQuality, edge>;
    using Place = typename Sampler::Place;

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
        if (edgeType == WaveEdge::Wrap) return run(WavePasses<WaveEdge::Wrap, Sampler>(image, sampler));
        return run(WavePasses<WaveEdge::Repeat, Sampler>(image, sampler));
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
    return warpByPosition(engine, quality, colourOrAlpha, [&](int32_t y, int32_t first, PositionRun& run) {
        std::copy_n(mapX.begin() + first, run.count, run.x);
        std::fill_n(run.y, run.count, mapY[static_cast<size_t>(y)]);
    });
}

namespace {

/// The numbers of circular waves.
struct Ripples {
    double amplitude;
    float radians, phase;
    Point origin;
    bool wide;

    /// Angles of the waves at the distances (`dx[i]`, `dy`) from the centre. The wide path rounds every step
    /// to single precision, the plain one the squares alone.
    KRL_WIDE_CLONES void anglesAt(const double* __restrict dx, double dy, double* __restrict angles,
                                  size_t count) const {
        const auto squareY = static_cast<float>(dy * dy);
        if (wide) {
            for (size_t i = 0; i < count; ++i) {
                const auto squareX = static_cast<float>(dx[i] * dx[i]);
                angles[i] = std::sqrt(squareX + squareY) * radians + phase;
            }
        } else {
            for (size_t i = 0; i < count; ++i) {
                const auto sum = static_cast<float>(dx[i] * dx[i] + squareY);
                angles[i] = std::sqrt(static_cast<double>(sum)) * radians + phase;
            }
        }
    }

    void positions(const ImageBuffer& image, int32_t y, int32_t first, PositionRun& run) const {
        double dx[kRunPixels], angles[kRunPixels], sines[kRunPixels], cosines[kRunPixels];
        for (size_t i = 0; i < run.count; ++i)
            dx[i] = wrapSubtract(origin.x, first + static_cast<int32_t>(i));
        anglesAt(dx, wrapSubtract(origin.y, y), angles, run.count);
        sinesAndCosines(angles, sines, cosines, run.count);
        for (size_t i = 0; i < run.count; ++i) {
            const int32_t x = first + static_cast<int32_t>(i);
            run.x[i] = heldInside(static_cast<float>(sines[i] * amplitude + x), image.width);
            run.y[i] = heldInside(static_cast<float>(cosines[i] * amplitude + y), image.height);
        }
    }
};

}  // namespace

Status circularWaves(ImageEngine& engine, float amplitude, float frequency, float phase, Point origin,
                     SampleQuality quality, ChannelTarget colourOrAlpha) {
    const Ripples ripples{amplitude < 0 ? 0.0f : amplitude, radiansPerPixel(frequency), phase, origin,
                          engine.useWidePath()};
    return warpByPosition(engine, quality, colourOrAlpha, [&](int32_t y, int32_t first, PositionRun& run) {
        ripples.positions(*engine.buffer(), y, first, run);
    });
}

}  // namespace krl
