#include "effects/warp/Waves.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <type_traits>
#include <vector>

#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "core/VectorLevels.h"
#include "kernels/sample/PositionWarp.h"
#include "kernels/sample/Trigonometry.h"

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

    /// A place for bilinear sampling, a whole number for the other.
    using Source = std::conditional_t<quality == SampleQuality::Bilinear, float, int32_t>;

    /// The sources of the pixels at `count` places, each of which moves on to the next.
    KRL_VECTOR_LEVELS void next(float* __restrict places, Source* __restrict sources, size_t count) const {
        const LineWalk walk = *this;  // no place can be part of it, or the loop would not become vectors
        for (size_t i = 0; i < count; ++i) {
            const float here = walk.wrapped(places[i]);
            places[i] = here + 1.0f;
            sources[i] = walk.sourceAt(here);
        }
    }

    /// The sources of `count` pixels in a row.
    void fill(float& place, Source* sources, size_t count) const {
        for (size_t i = 0; i < count;) {
            const float start = wrapped(place);
            const auto steps = std::min(count - i, static_cast<size_t>(exactSteps(start)));
            for (size_t j = 0; j < steps; ++j)
                sources[i + j] = sourceAt(start + static_cast<float>(static_cast<int32_t>(j)));
            place = start + static_cast<float>(steps - 1) + 1.0f;
            i += steps;
        }
    }

private:
    static constexpr bool kWraps = quality == SampleQuality::Bilinear && edge == WaveEdge::Wrap;

    float wrapped(float place) const {
        if constexpr (!kWraps) return place;
        return place < 0 ? place + period_ : place > length_ ? place - period_ : place;
    }

    /// How many pixels from `start` on are `start` plus a whole number exactly: up to the next power of two,
    /// at which a float loses a bit, and to the next wrap.
    int32_t exactSteps(float start) const {
        if (!(start >= 1.0f && start < 8388608.0f)) return 1;
        const float limit = std::bit_cast<float>((std::bit_cast<uint32_t>(start) & 0x7F800000) + 0x00800000);
        const auto steps = static_cast<int32_t>(std::ceil(limit - start));
        if constexpr (!kWraps) return steps;
        return start > length_ ? 1 : std::min(steps, static_cast<int32_t>(length_ - start) + 1);
    }

    Source sourceAt(float place) const {
        if constexpr (quality == SampleQuality::Standard)
            return nearest(place);
        else if constexpr (edge == WaveEdge::Wrap)
            return place;
        else
            return place < 0 ? 0.0f : place >= length_ ? length_ - 1.0f : place;
    }

    int32_t nearest(float place) const {
        const bool fits = (place > -2147483648.0f) & (place < 2147483648.0f);
        const auto index = static_cast<int32_t>(fits ? place : -2147483648.0f);
        if constexpr (edge == WaveEdge::Wrap) {
            const int32_t before = wrapAdd(index, wholeLength_ - 1), after = wrapAdd(index, 1 - wholeLength_);
            return index < 0 ? before : index >= wholeLength_ ? after : index;
        }
        return index < 0 ? 0 : place >= length_ ? wholeLength_ - 1 : index;
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
            forEachPiece(image_.width, [&](int32_t first, size_t count) {
                Place places[kSampleBatch];
                walk.fill(place, places, count);
                sampler_.alongRow(row + first, y, places, count);
            });
        });
    }

    /// All columns of a band walk down together, so that memory is read row by row.
    Status downColumns(const ImageEngine& engine, const std::vector<float>& columnShifts) const {
        const Walk walk(image_.height, image_.height - 1);
        return forEachColumnRange(engine, [&](IndexRange columns) {
            std::vector<float> walking(columnShifts.begin() + columns.first,
                                       columnShifts.begin() + columns.last);
            for (int32_t y = 0; y < image_.height; ++y)
                forEachPiece(columns.last - columns.first, [&](int32_t first, size_t count) {
                    Place places[kSampleBatch];
                    walk.next(walking.data() + first, places, count);
                    const int32_t column = columns.first + first;
                    sampler_.downColumns(image_.row(y) + column, places, column, count);
                });
        });
    }

private:
    using Walk = LineWalk<Sampler::kQuality, edge>;
    using Place = typename Walk::Source;

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
        const int32_t middle = count / 2;
        for (int32_t i = 0; i < count; ++i)
            table[static_cast<size_t>(i)] =
                heldInside(static_cast<float>(wave((middle - i) * radians + phase) * height + i), count);
        return table;
    };
    const std::vector<float> mapX = map(image.width, sine, horizPhase);
    const std::vector<float> mapY = map(image.height, cosine, vertPhase);
    return warpByPosition(engine, quality, colourOrAlpha, [&](int32_t y, int32_t first, PositionSpan& run) {
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
    KRL_VECTOR_LEVELS void anglesAt(const double* __restrict dx, double dy, double* __restrict angles,
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

    /// Where pixels at `start`, `start + step` and so on are shifted to.
    KRL_VECTOR_LEVELS void shiftPlaces(const double* __restrict heights, int32_t start, int32_t step,
                                       size_t count, float* __restrict places) const {
        for (size_t i = 0; i < count; ++i)
            places[i] = static_cast<float>(heights[i] * amplitude + (start + step * static_cast<int32_t>(i)));
    }

    void positions(const ImageBuffer& image, int32_t y, int32_t first, PositionSpan& run) const {
        double dx[kSampleBatch], angles[kSampleBatch], sines[kSampleBatch], cosines[kSampleBatch];
        for (size_t i = 0; i < run.count; ++i)
            dx[i] = wrapSubtract(origin.x, first + static_cast<int32_t>(i));
        anglesAt(dx, wrapSubtract(origin.y, y), angles, run.count);
        sinesAndCosines(angles, sines, cosines, run.count);
        shiftPlaces(sines, first, 1, run.count, run.x);
        shiftPlaces(cosines, y, 0, run.count, run.y);
        holdInside(run.x, run.count, image.width);
        holdInside(run.y, run.count, image.height);
    }
};

}  // namespace

Status circularWaves(ImageEngine& engine, float amplitude, float frequency, float phase, Point origin,
                     SampleQuality quality, ChannelTarget colourOrAlpha) {
    const Ripples ripples{amplitude < 0 ? 0.0f : amplitude, radiansPerPixel(frequency), phase, origin,
                          engine.useWidePath()};
    return warpByPosition(engine, quality, colourOrAlpha, [&](int32_t y, int32_t first, PositionSpan& run) {
        ripples.positions(*engine.buffer(), y, first, run);
    });
}

}  // namespace krl
