#include <algorithm>
#include <cmath>
#include <vector>

#include "catalogue/Catalogue.h"
#include "core/Batch.h"
#include "core/ChannelMask.h"
#include "core/ExactDivision.h"
#include "core/ExactFunctions.h"
#include "core/VectorLevels.h"
#include "effects/blur/BlurChoices.h"
#include "kernels/blend/AlphaScale.h"
#include "kernels/path/PathSum.h"
#include "krlimage/blur.h"

namespace krl {

namespace {

/// Samples of the path that fall on one pixel, as seen from the path's own.
struct Stop {
    int32_t dx, dy;
    int64_t samples;
};

/// The path from a pixel to `distance` samples on. Both coordinates run one way only, so equal ones
/// follow one another and become one stop; steps that leave the picture from everywhere are one.
std::vector<Stop> pathAlong(int32_t distance, int32_t angle, int32_t width, int32_t height) {
    const double radians = static_cast<float>(angle * kRadiansPerDegree);
    const auto cosine = static_cast<float>(exactCosine(radians)),
               sine = static_cast<float>(exactSine(radians));
    const auto stopAt = [&](int64_t i) {
        return Stop{clampTo(truncate(double(i) * cosine), 1 - width, width - 1),
                    clampTo(truncate(double(i) * sine), 1 - height, height - 1), 0};
    };
    std::vector<Stop> path;
    for (int64_t first = 0; first < distance;) {
        Stop stop = stopAt(first);
        const auto isSame = [&](int64_t i) {
            const Stop other = stopAt(i);
            return other.dx == stop.dx && other.dy == stop.dy;
        };
        const int64_t end = endOfSpan(first, distance, isSame);
        stop.samples = end - first;
        path.push_back(stop);
        first = end;
    }
    return path;
}

/// A packed copy of the picture that is wider by as far as the path reaches, its first and last
/// columns repeated, so that no sample needs a test; one value for each pixel.
template <class Value>
class WidenedPicture {
public:
    template <class ValueOf>
    WidenedPicture(const ImageEngine& engine, const std::vector<Stop>& path, const ValueOf& valueOf)
        : left_(std::max(0, -path.back().dx)),
          width_(engine.buffer()->width),
          stride_(left_ + width_ + std::max(0, path.back().dx)),
          last_(engine.buffer()->height - 1),
          values_(static_cast<uint64_t>(stride_) * static_cast<uint64_t>(engine.buffer()->height)) {
        status_ = forEachRow(engine, [&](const Pixel* row, int32_t y) {
            Value* middle = values_.data() + ptrdiff_t(y) * stride_ + left_;
            for (int32_t x = 0; x < width_; ++x) middle[x] = valueOf(row[x]);
            std::fill(middle - left_, middle, middle[0]);
            std::fill(middle + width_, middle - left_ + stride_, middle[width_ - 1]);
        });
    }

    /// Whether the bands that make the copy could start.
    Status status() const { return status_; }

    /// What the samples of one stop are for the pixels from `x`, `y` on.
    const Value* at(int32_t x, int32_t y, const Stop& stop) const {
        const int32_t row = clampTo(y + stop.dy, 0, last_);
        return values_.data() + ptrdiff_t(row) * stride_ + left_ + x + stop.dx;
    }

private:
    int32_t left_, width_, stride_, last_;
    Scratch<Value> values_;
    Status status_ = kStatusOk;
};

/// Sums of a batch's bytes, in 16 bits for as long as they hold them.
struct BatchSums {
    uint32_t total[kBatchPixels * sizeof(Pixel)];
    uint16_t part[kBatchPixels * sizeof(Pixel)];
    int64_t held = 0;  ///< samples in `part`
};

/// Samples whose sum 16 bits hold.
constexpr int64_t kPartSamples = 256;

KRL_VECTOR_LEVELS
void addPart(uint16_t* part, const uint8_t* bytes, int32_t count, uint16_t times) {
    for (int32_t i = 0; i < count; ++i) part[i] = static_cast<uint16_t>(part[i] + bytes[i] * times);
}

KRL_VECTOR_LEVELS
void addTotal(uint32_t* total, const uint8_t* bytes, int32_t count, uint32_t times) {
    for (int32_t i = 0; i < count; ++i) total[i] += bytes[i] * times;
}

KRL_VECTOR_LEVELS
void emptyParts(BatchSums& sums, int32_t count) {
    for (int32_t i = 0; i < count; ++i) {
        sums.total[i] += sums.part[i];
        sums.part[i] = 0;
    }
    sums.held = 0;
}

void addStop(BatchSums& sums, const uint8_t* bytes, int32_t count, int64_t samples) {
    if (samples > kPartSamples) {
        addTotal(sums.total, bytes, count, static_cast<uint32_t>(samples));
        return;
    }
    if (sums.held + samples > kPartSamples) emptyParts(sums, count);
    addPart(sums.part, bytes, count, static_cast<uint16_t>(samples));
    sums.held += samples;
}

KRL_VECTOR_LEVELS
void addWeights(float* weight, const float* units, int32_t count) {
    for (int32_t i = 0; i < count; ++i) weight[i] += units[i];
}

/// One blur along a path: reads a copy and writes the image.
class Trail {
public:
    Trail(const ImageEngine& engine, int32_t distance, int32_t angle, ChannelTarget target)
        : engine_(engine),
          image_(*engine.buffer()),
          distance_(distance),
          target_(target),
          path_(pathAlong(distance, angle, image_.width, image_.height)),
          isWeighted_(target == ChannelTarget::RGBA &&
                      (distance > ByteMean::kMost || hasTransparency(image_))),
          source_(engine, path_, [=](Pixel p) { return target == ChannelTarget::RGBA ? dimmed(p) : p; }) {
        const float* unitFromByte = engine.tables().unitFromByte;
        if (isWeighted_) units_.emplace_back(engine, path_, [=](Pixel p) { return unitFromByte[p.alpha]; });
    }

    Status run() const {
        if (source_.status()) return source_.status();
        if (isWeighted_ && units_.front().status()) return units_.front().status();
        return forEachRow(engine_, [&](Pixel* row, int32_t y) {
            forEachBatch(static_cast<size_t>(image_.width),
                         [&](size_t x, size_t count) { blurBatch(row + x, int32_t(x), y, int32_t(count)); });
        });
    }

private:
    /// Colour scaled by alpha over 256, as it is summed before the sum is divided by alpha over 255.
    static Pixel dimmed(Pixel p) {
        const auto scaled = [&](int byte) { return static_cast<uint8_t>(byte * p.alpha >> 8); };
        return {scaled(p.blue), scaled(p.green), scaled(p.red), p.alpha};
    }

    void blurBatch(Pixel* pixels, int32_t x, int32_t y, int32_t count) const {
        BatchSums sums{};
        for (const Stop& stop : path_) addStop(sums, &source_.at(x, y, stop)->blue, count * 4, stop.samples);
        emptyParts(sums, count * 4);
        Pixel means[kBatchPixels];
        meansOf(sums.total, count * 4, distance_, firstByte(means));
        if (isWeighted_)
            writeWeighted(pixels, x, y, count, sums.total, means);
        else
            ChannelMask(target_).write(pixels, means, count);
    }

    void writeWeighted(Pixel* pixels, int32_t x, int32_t y, int32_t count, const uint32_t* totals,
                       const Pixel* means) const {
        constexpr int64_t kFew = 8;
        float weight[kBatchPixels] = {};
        for (const Stop& stop : path_) {
            const float* units = units_.front().at(x, y, stop);
            if (stop.samples <= kFew)
                for (int64_t n = 0; n < stop.samples; ++n) addWeights(weight, units, count);
            else
                for (int32_t i = 0; i < count; ++i)
                    weight[i] = addedRepeatedly(weight[i], units[i], stop.samples);
        }
        for (int32_t i = 0; i < count; ++i) {
            if (weight[i] == 0.0f) continue;
            const uint32_t* total = totals + i * 4;
            const auto colour = [&](int channel) {
                return truncatedByte(static_cast<int32_t>(total[channel]) / double(weight[i]));
            };
            pixels[i] = {colour(0), colour(1), colour(2), means[i].alpha};
        }
    }

    const ImageEngine& engine_;
    const ImageBuffer& image_;
    int32_t distance_;
    ChannelTarget target_;
    std::vector<Stop> path_;
    bool isWeighted_;
    WidenedPicture<Pixel> source_;
    std::vector<WidenedPicture<float>> units_;  ///< alpha on 0..1, where colour is weighed by it
};

}  // namespace

/// The mean of samples along a straight line, the same for every pixel.
Status motionBlur(ImageEngine& engine, int32_t distance, int32_t angle, BlurCount blurCount,
                  ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    if (distance < 1) return kStatusOk;
    const Status first = Trail(engine, distance, angle, target).run();
    if (first || blurCount == BlurCount::Single) return first;
    return Trail(engine, distance, wrapAdd(angle, 180), target).run();
}

void describeMotionBlur(Catalogue& catalogue) {
    catalogue.add("krlImageMotionBlur", motionBlur)
        .summary("Smears the picture along a straight line.")
        .words("speed, smear, trail, shake, direction")
        .integer("distance", {.from = 0, .to = 100, .example = 24, .least = 0, .neutral = 0, .pixels = true},
                 "length of a trail in pixels")
        .integer("angle", {.from = 0, .to = 360, .example = 20},
                 "degrees, clockwise from the right, in which each pixel looks for its trail")
        .symbol("blurCount", {{"single", BlurCount::Single}, {"double", BlurCount::Double}},
                otherwise(BlurCount::Double),
                "a trail to one side, or a second one in the opposite direction; any other symbol "
                "is double")
        .symbol("colourOrAlpha", anyChannels(), kUnsetTarget, kWeighedMeaning)
        .showing("RGB")
        .inputFailure("MotionBlur input failure (Image)")
        .failed("Failed Motion Blur function (Image)");
}

}  // namespace krl
