#include <algorithm>
#include <bit>
#include <cmath>
#include <type_traits>
#include <vector>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "core/VectorLevels.h"
#include "effects/warp/WarpChoices.h"
#include "effects/warp/WaveFrequency.h"
#include "kernels/sample/Sampler.h"
#include "kernels/sample/Trigonometry.h"
#include "krlimage/warp.h"

namespace krl {

namespace {

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
            Place places[kBatchPixels];
            forEachBatch(static_cast<size_t>(image_.width), [&](size_t first, size_t count) {
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
            const auto width = static_cast<size_t>(columns.last - columns.first);
            for (int32_t y = 0; y < image_.height; ++y)
                forEachBatch(width, [&](size_t first, size_t count) {
                    Place places[kBatchPixels];
                    walk.next(walking.data() + first, places, count);
                    const int32_t column = columns.first + static_cast<int32_t>(first);
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

/// Shifts each row by `amplitude * hPercent / 100 * sin(y * frequency + horizPhase)`, and then each column by
/// `amplitude * vPercent / 100 * sin(x * frequency + vertPhase)`.
Status waves(ImageEngine& engine, const WaveSettings& settings, SampleQuality quality,
             ChannelTarget colourOrAlpha) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const float frequency = radiansPerPixel(settings.frequency);
    const auto height = [&](int32_t percent) {
        return static_cast<float>(static_cast<double>(settings.amplitude) * percent / 100);
    };
    const std::vector<float> rowShifts =
        shifts(image.height, frequency, settings.horizPhase, height(settings.hPercent));
    const std::vector<float> columnShifts =
        shifts(image.width, frequency, settings.vertPhase, height(settings.vPercent));
    ImageCopy source(image);
    return withSampler(source.view(), quality, colourOrAlpha, [&](const auto& sampler) {
        const auto run = [&](const auto& passes) {
            if (Status status = passes.alongRows(engine, rowShifts)) return status;
            source.refresh(image);
            return passes.downColumns(engine, columnShifts);
        };
        using Sampler = std::decay_t<decltype(sampler)>;
        if (settings.edgeType == WaveEdge::Wrap)
            return run(WavePasses<WaveEdge::Wrap, Sampler>(image, sampler));
        return run(WavePasses<WaveEdge::Repeat, Sampler>(image, sampler));
    });
}

void describeWaves(Catalogue& catalogue) {
    catalogue.add("krlImageWaves", waves)
        .summary("Shifts rows and columns along waves, as seen through moving water.")
        .words("water, ripple, heat haze, wobble, distort")
        .real("amplitude", {.from = -100, .to = 100, .example = 12, .neutral = 0, .pixels = true},
              "height of the waves in pixels")
        .real("frequency", {.from = 0, .to = 45, .example = 3}, kFrequencyMeaning)
        .real("horizPhase", {.from = -6.3, .to = 6.3, .example = 0},
              "where the wave of the rows begins, in radians")
        .real("vertPhase", {.from = -6.3, .to = 6.3, .example = 1},
              "where the wave of the columns begins, in radians")
        .integer("hPercent", {.from = 0, .to = 100, .example = 100},
                 "percent of the amplitude for the rows; 0 leaves them in place")
        .integer("vPercent", {.from = 0, .to = 100, .example = 60},
                 "percent of the amplitude for the columns; 0 leaves them in place")
        .symbol("edgeType", {{"wrap", WaveEdge::Wrap}, {"repeat", WaveEdge::Repeat}},
                refused("Waves invalid edge type input (Image)"),
                "what comes in from beyond the edge: the other side, or the pixels of the edge")
        .thenCompare()
        .symbol("quality", warpQualities(), refused("Waves invalid quality input (Image)"), kQualityMeaning)
        .showing("bilinear")
        .thenCompare()
        .symbol("colourOrAlpha", anyChannels(), refused("Waves invalid colourOrAlpha input (Image)"),
                kChannelsMeaning)
        .inputFailure("Waves input failure (Image)")
        .failed("Failed Waves function (Image)");
}

}  // namespace krl
