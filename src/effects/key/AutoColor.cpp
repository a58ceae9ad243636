#include <array>
#include <cmath>
#include <vector>

#include "core/PixelWord.h"
#include "core/Scratch.h"
#include "core/VectorLevels.h"
#include "effects/key/DifferenceKeys.h"
#include "effects/key/DifferenceSpan.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

namespace {

/// Gives each band's pixels to `measure(first, last)` and keeps what each finds, so that bands
/// share nothing.
template <class Finding, class Measure>
Status measureBands(const ImageEngine& engine, std::vector<Finding>& findings, Measure&& measure) {
    if (Status state = engine.imageStatus()) return state;
    const int32_t bandCount = engine.getThreadCount();
    findings.resize(size_t(bandCount));
    return runBands(bandCount, [&](int32_t band) {
        const IndexRange run = pixelBand(*engine.buffer(), bandCount, band);
        Pixel* const pixels = engine.buffer()->row(0);
        if (run.first < run.last) findings[size_t(band)] = measure(pixels + run.first, pixels + run.last);
    });
}

struct ColourCount {
    int64_t green = 0, blue = 0;
};

KRL_VECTOR_LEVELS ColourCount countColours(const Pixel* pixels, int32_t count) {
    int32_t greens = 0, blues = 0;
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(pixels[i]);
        const int32_t blue = byteAt(word, 0), green = byteAt(word, 8), red = byteAt(word, 16);
        const bool isGreen = (green >= blue) & (green >= red);
        greens += isGreen;
        blues += (blue > green) & (blue > red);
    }
    return {greens, blues};
}

/// What the first pass learns of the pixels whose key channel stands above both others.
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

/// The range of those of `runLength` differences that are above 0.
KRL_VECTOR_LEVELS DifferenceRange rangeOf(const int16_t* differences, ptrdiff_t runLength) {
    int32_t above = 0, total = 0, least = 255, most = 0;
    for (ptrdiff_t i = 0; i < runLength; ++i) {
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
    void fade(const int16_t* differences, const uint8_t* chromas, ptrdiff_t count, uint8_t* faded) const {
        for (ptrdiff_t i = 0; i < count; ++i) {
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

/// Makes alpha of what mattes leave.
KRL_VECTOR_LEVELS void replaceAlphas(Pixel* pixels, const uint8_t* mattes, ptrdiff_t count) {
    for (ptrdiff_t i = 0; i < count; ++i)
        storeWord(pixels[i], (wordOf(pixels[i]) & 0x00FFFFFFu) | (255u - mattes[i]) << 24);
}

/// Both automatic keys: a pass that maps the faded differences and learns their range, and a pass
/// that stretches them; `fold(pixels, mattes, count)` is what sets the two keys apart.
template <class Fold>
Status keyAutomatically(ImageEngine& engine, const AutoKeySettings& settings, KeyColour& used, Fold&& fold) {
    if (Status state = engine.imageStatus()) return state;
    const Scratch<uint8_t> map(engine.buffer()->bytes() / sizeof(Pixel));
    used = settings.userColor;
    // What was counted decides even if not every band could count.
    if (used == KeyColour::Auto) static_cast<void>(autoColor(engine, used));

    const GreyFade grey(settings.userGrey, settings.thresholdVal);
    const Pixel* const pixels = engine.buffer()->row(0);
    std::vector<DifferenceRange> ranges;
    const Status mapped = measureBands(engine, ranges, [&](const Pixel* first, const Pixel* last) {
        DifferenceRange range;
        std::array<int16_t, kMatteBatch> differences;
        std::array<uint8_t, kMatteBatch> chromas;
        for (const Pixel* run = first; run != last;) {
            const ptrdiff_t count = std::min(kMatteBatch, last - run);
            differencesOf(run, count, used, differences.data());
            chromasOf(run, count, chromas.data());
            range.add(rangeOf(differences.data(), count));
            grey.fade(differences.data(), chromas.data(), count, map.data() + (run - pixels));
            run += count;
        }
        return range;
    });
    if (mapped) return mapped;

    DifferenceRange whole;
    for (const DifferenceRange& range : ranges) whole.add(range);
    const std::array<uint8_t, 256> mattes = stretchMattes(whole, settings.userDetail);
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        const uint8_t* faded = map.data() + (first - pixels);
        std::array<uint8_t, kMatteBatch> stretched;
        for (Pixel* run = first; run != last;) {
            const ptrdiff_t count = std::min(kMatteBatch, last - run);
            for (ptrdiff_t i = 0; i < count; ++i) stretched[size_t(i)] = mattes[*faded++];
            fold(run, stretched.data(), count);
            run += count;
        }
    });
}

}  // namespace

Status autoColor(const ImageEngine& engine, KeyColour& found) {
    std::vector<ColourCount> counts;
    const Status counted = measureBands(engine, counts, [](const Pixel* first, const Pixel* last) {
        return countColours(first, static_cast<int32_t>(last - first));
    });
    ColourCount total;
    for (const ColourCount& count : counts) total = {total.green + count.green, total.blue + count.blue};
    found = total.green < total.blue ? KeyColour::Blue : KeyColour::Green;
    return counted;
}

Status autoColorDifference(ImageEngine& engine, const AutoKeySettings& settings, KeyColour& used) {
    return keyAutomatically(engine, settings, used, replaceAlphas);
}

Status autoColorDifferenceCharger(ImageEngine& engine, const AutoKeySettings& settings, bool keep,
                                  bool invert, KeyColour& used) {
    return keyAutomatically(engine, settings, used,
                            [=](Pixel* pixels, const uint8_t* stretched, ptrdiff_t count) {
                                foldMattes(pixels, stretched, count, keep, invert);
                            });
}

}  // namespace krl
