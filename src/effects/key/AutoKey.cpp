#include "effects/key/AutoKey.h"

#include <array>
#include <cmath>

#include "catalogue/Call.h"
#include "core/Bands.h"
#include "core/Batch.h"
#include "core/Scratch.h"
#include "core/VectorLevels.h"
#include "effects/key/DifferenceSpan.h"
#include "effects/key/MeasureBands.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

namespace {

using ByteMap = Scratch<uint8_t>;

/// What the first pass learns of the pixels whose key channel exceeds both others.
struct DifferenceRange {
    int64_t count = 0, sum = 0;
    int32_t lowest = 255, highest = 0;

    void add(const DifferenceRange& other) {
        count += other.count;
        sum += other.sum;
        lowest = std::min(lowest, other.lowest);
        highest = std::max(highest, other.highest);
    }
};

/// The range of those of `count` differences that are above 0.
KRL_VECTOR_LEVELS DifferenceRange rangeOf(const int16_t* differences, size_t count) {
    int32_t above = 0, total = 0, least = 255, most = 0;
    for (size_t i = 0; i < count; ++i) {
        const int32_t difference = differences[i];
        above += difference > 0;
        total += std::max(difference, 0);
        least = std::min(least, difference > 0 ? difference : 255);
        most = std::max(most, difference);
    }
    return {above, total, least, most};
}

/// How differences fade out toward grey, by the distance between a pixel's largest and smallest
/// channel.
class GreyFade {
public:
    GreyFade(float userGrey, float thresholdVal) {
        const float greyLevel = clampTo(userGrey, 0.0f, 1.0f) * 255.0f;
        const float start = greyLevel * thresholdVal;
        const float scale = 1.0f / (greyLevel * (1.0f - thresholdVal));
        for (size_t i = 0; i < losses_.size(); ++i) {
            const auto chroma = static_cast<double>(i);
            const double weight = (chroma - start) * scale;
            losses_[i] = chroma >= greyLevel ? 0.0 : chroma < start ? 1.0 : std::fabs(weight - 1.0);
        }
    }

    /// Writes `count` differences as they have faded.
    void fade(const int16_t* differences, const uint8_t* chromas, size_t count, uint8_t* faded) const {
        for (size_t i = 0; i < count; ++i) {
            const int32_t difference = differences[i];
            faded[i] = clampByte(truncate(difference - losses_[chromas[i]] * difference));
        }
    }

private:
    /// The share of a difference that is lost.
    std::array<double, 256> losses_;
};

/// The stretch of faded differences to mattes.
std::array<uint8_t, 256> stretchMattes(const DifferenceRange& range, float userDetail) {
    const float detail = clampTo(userDetail, -1.0f, 1.0f);
    const auto middle = static_cast<float>((range.lowest + range.highest) * 0.5);
    const auto mean = static_cast<float>(double(range.sum) / double(range.count));
    const auto high = static_cast<float>(middle + (double(mean) - middle) * detail);
    const double low = range.lowest;
    std::array<uint8_t, 256> mattes;
    for (size_t v = 0; v < mattes.size(); ++v) {
        const auto value = static_cast<double>(v);
        const uint8_t between = truncatedByte((value - low) / (high - low) * 255.0);
        mattes[v] = value <= low ? 0 : value >= high ? 255 : between;
    }
    return mattes;
}

/// Fills `map` with the faded differences of every pixel and finds the range of the whole ones.
Status mapDifferences(const ImageEngine& engine, KeyColour colour, const GreyFade& grey, const ByteMap& map,
                      DifferenceRange& whole) {
    std::vector<DifferenceRange> ranges;
    const Status mapped = measureBands(engine, ranges, [&](const Pixel* first, const Pixel* last) {
        DifferenceRange range;
        std::array<int16_t, kBatchPixels> differences;
        std::array<uint8_t, kBatchPixels> chromas;
        uint8_t* faded = map.data() + (first - engine.buffer()->row(0));
        forEachBatch(static_cast<size_t>(last - first), [&](size_t start, size_t count) {
            differencesOf(first + start, count, colour, differences.data());
            chromasOf(first + start, count, chromas.data());
            range.add(rangeOf(differences.data(), count));
            grey.fade(differences.data(), chromas.data(), count, faded + start);
        });
        return range;
    });
    for (const DifferenceRange& range : ranges) whole.add(range);
    return mapped;
}

/// Hands every pixel and the matte of its faded difference to `fold`.
Status foldMap(const ImageEngine& engine, const ByteMap& map, const std::array<uint8_t, 256>& mattes,
               const MatteFold& fold) {
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        const uint8_t* faded = map.data() + (first - engine.buffer()->row(0));
        std::array<uint8_t, kBatchPixels> stretched;
        forEachBatch(static_cast<size_t>(last - first), [&](size_t start, size_t count) {
            for (size_t i = 0; i < count; ++i) stretched[i] = mattes[faded[start + i]];
            fold(first + start, stretched.data(), count);
        });
    });
}

}  // namespace

Status keyAutomatically(ImageEngine& engine, const AutoKeySettings& settings, KeyColour& used,
                        const MatteFold& fold) {
    if (Status state = engine.imageStatus()) return state;
    const ByteMap map(engine.buffer()->bytes() / sizeof(Pixel));
    used = settings.userColor;
    // What was counted decides even if not every band could count.
    if (used == KeyColour::Auto) leftOutWithoutThreads(autoColor(engine, used));

    DifferenceRange range;
    const GreyFade grey(settings.userGrey, settings.thresholdVal);
    if (Status status = mapDifferences(engine, used, grey, map, range)) return status;
    return foldMap(engine, map, stretchMattes(range, settings.userDetail), fold);
}

Method& addAutoKeySettings(Method& entry, const char* badColour) {
    const std::vector<SymbolChoice> backings = {
        {"auto", KeyColour::Auto}, {"green", KeyColour::Green}, {"blue", KeyColour::Blue}};
    return entry.gives("auto_color", kAutoColourMeaning)
        .symbol("userColor", backings, refused(badColour), "colour of the backing, or auto to find it")
        .real("userDetail", {.from = -1, .to = 1, .example = 0.2, .least = -1, .most = 1},
              "where the backing counts as full, from the middle of its range toward its mean")
        .real("userGrey", {.from = 0, .to = 1, .example = 0.25, .least = 0, .most = 1},
              "how colourful a pixel must be to count in full")
        .real("thresholdVal", {.from = 0, .to = 1, .example = 0.5}, "share of that below which it is a grey");
}

AutoKeySettings autoKeySettings(const Call& call) {
    return {.userColor = call.get<KeyColour>(0),
            .userDetail = call.get<float>(1),
            .userGrey = call.get<float>(2),
            .thresholdVal = call.get<float>(3)};
}

Outcome giveColour(Call& call, Status status, KeyColour used) {
    if (status != kStatusOk) return failure(call.method().failedText());
    call.caller().giveSymbol("auto_color", used == KeyColour::Blue ? "blue" : "green");
    return succeeded();
}

}  // namespace krl
