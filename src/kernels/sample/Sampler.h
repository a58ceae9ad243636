#pragma once

#include <type_traits>

#include "core/Numbers.h"
#include "kernels/sample/SampleSpan.h"
#include "krlimage/engine.h"
#include "krlimage/options.h"
#include "krlimage/pixel.h"

/// How the warps read a picture between its pixels. `standard` takes the pixel that truncation leads
/// to; `bilinear` weighs four, and knows what to do where some of them are missing. A warp reads a
/// copy and writes the image, both of the same geometry.
namespace krl {

/// What stands for the samples beyond the border.
enum class SampleEdge : int32_t {
    FadeAlpha = 56,  ///< nothing in alpha, where all four bytes are written; the nearest pixel in colour
    Repeat = 57,     ///< the nearest pixel in every byte
};

/// A place in a picture as bilinear sampling sees it. Note the weights: `yWeight` is that of the upper
/// index and `xWeight` that of the lower one.
struct SamplePoint {
    int32_t xCeil = 0;
    int32_t xFloor = 0;
    int32_t yCeil = 0;
    int32_t yFloor = 0;
    float yWeight = 0;         ///< weight of row `yCeil`; 1 minus this is that of `yFloor`
    float xWeight = 0;         ///< weight of column `xFloor`; 1 minus this is that of `xCeil`
    bool inside = false;       ///< all four samples are in the picture
    bool bottomStrip = false;  ///< the row below is missing
    bool topStrip = false;     ///< the row above is missing
    bool rightStrip = false;   ///< the column to the right is missing
    bool leftStrip = false;    ///< the column to the left is missing
    bool cornerBottomRight = false, cornerTopRight = false;  ///< diagonally off a corner:
    bool cornerBottomLeft = false, cornerTopLeft = false;    ///< nothing is sampled there
};

/// The place (`x`, `y`) of a picture of `width` by `height`; the row comes first.
SamplePoint makeSamplePoint(float y, float x, int32_t width, int32_t height);

/// Writes to `destination` what `source` shows at `point`: the bytes that `target` names, after two
/// truncated blends, first down the columns, then along the row. Off a corner and farther outside
/// nothing is written.
void sampleBilinear(const SamplePoint& point, Pixel& destination, const ImageBuffer& source,
                    ChannelTarget target, SampleEdge edge);

/// Copies the bytes that `target` names.
template <ChannelTarget target>
void copyChannels(Pixel& destination, Pixel source) {
    if constexpr (target == ChannelTarget::RGBA)
        destination = source;
    else if constexpr (target == ChannelTarget::RGB)
        destination = {source.blue, source.green, source.red, destination.alpha};
    else
        destination.alpha = source.alpha;
}

/// Nearest sampling of a picture: truncated toward zero, and kept inside. Columns beyond a row's ends run on
/// into the rows beside. Each operation writes a run of at most `kSampleBatch` pixels.
template <ChannelTarget target>
class NearestSampler {
public:
    static constexpr SampleQuality kQuality = SampleQuality::Standard;

    explicit NearestSampler(const ImageBuffer& source)
        : source_(source), stride_(source.rowBytes / static_cast<int32_t>(sizeof(Pixel))) {}

    /// From the places (`x[i]`, `y[i]`).
    void run(Pixel* destination, const float* y, const float* x, size_t count) const {
        Pixel nearest[kSampleBatch];
        nearestPixels(source_.row(0), stride_, y, x, count, source_.height - 1, source_.width - 1, nearest);
        for (size_t i = 0; i < count; ++i) copyChannels<target>(destination[i], nearest[i]);
    }
    /// From the places `x[i]` after the beginning of row `y`; those beyond its ends lie in the rows beside.
    void alongRow(Pixel* destination, int32_t y, const int32_t* x, size_t count) const {
        const Pixel* row = source_.row(y);
        const int64_t first = -int64_t(y) * stride_, last = int64_t(source_.height - y) * stride_ - 1;
        for (size_t i = 0; i < count; ++i)
            copyChannels<target>(destination[i], row[clampTo<int64_t>(x[i], first, last)]);
    }
    /// From the rows `y[i]` of the columns from `x` on.
    void downColumns(Pixel* destination, const int32_t* y, int32_t x, size_t count) const {
        for (size_t i = 0; i < count; ++i) {
            const Pixel* row = source_.row(clampTo(y[i], 0, source_.height - 1));
            copyChannels<target>(destination[i], row[x + static_cast<int32_t>(i)]);
        }
    }

private:
    const ImageBuffer& source_;
    int32_t stride_;
};

/// Bilinear sampling of a picture with repeated edges: `sampleBilinear` at `makeSamplePoint`, with a road of
/// whole numbers for the places whose four samples all exist. Each operation writes a run of at most
/// `kSampleBatch` pixels.
template <ChannelTarget target>
class BilinearSampler {
public:
    static constexpr SampleQuality kQuality = SampleQuality::Bilinear;

    explicit BilinearSampler(const ImageBuffer& source)
        : source_(source),
          stride_(source.rowBytes / static_cast<int32_t>(sizeof(Pixel))),
          splitsX_(canSplitPlaces(source.width - 1)),
          splitsY_(canSplitPlaces(source.height - 1)) {}

    /// From the places (`x[i]`, `y[i]`).
    void run(Pixel* destination, const float* y, const float* x, size_t count) const {
        const auto general = [&](size_t i) { sample(destination[i], y[i], x[i]); };
        if (!splitsX_ || !splitsY_) return forEach(count, general);
        AxisSpan rows, columns;
        const bool rowsExact = splitPlaces(y, count, source_.height - 1, rows);
        const bool columnsExact = splitPlaces(x, count, source_.width - 1, columns);
        Pixel blended[kSampleBatch];
        blendSquares(source_.row(0), stride_, rows, columns, count, blended);
        place(destination, blended, count, rowsExact && columnsExact, general,
              [&](size_t i) { return rows.exact[i] & columns.exact[i]; });
    }
    /// From the places `x[i]` of row `y`.
    void alongRow(Pixel* destination, int32_t y, const float* x, size_t count) const {
        const auto general = [&](size_t i) { sample(destination[i], static_cast<float>(y), x[i]); };
        if (!splitsX_) return forEach(count, general);
        AxisSpan columns;
        const bool exact = splitPlaces(x, count, source_.width - 1, columns);
        Pixel blended[kSampleBatch];
        blendAlongRow(source_.row(y), columns, count, blended);
        place(destination, blended, count, exact, general, [&](size_t i) { return columns.exact[i]; });
    }
    /// From the places `y[i]` of the columns from `x` on.
    void downColumns(Pixel* destination, const float* y, int32_t x, size_t count) const {
        const auto general = [&](size_t i) {
            sample(destination[i], y[i], static_cast<float>(x + static_cast<int32_t>(i)));
        };
        if (!splitsY_) return forEach(count, general);
        AxisSpan rows;
        const bool exact = splitPlaces(y, count, source_.height - 1, rows);
        Pixel blended[kSampleBatch];
        blendDownColumns(source_.row(0) + x, stride_, rows, count, blended);
        place(destination, blended, count, exact, general, [&](size_t i) { return rows.exact[i]; });
    }

private:
    template <class PerPixel>
    static void forEach(size_t count, PerPixel&& perPixel) {
        for (size_t i = 0; i < count; ++i) perPixel(i);
    }
    template <class General, class Exact>
    static void place(Pixel* destination, const Pixel* blended, size_t count, bool allExact,
                      General&& general, Exact&& exact) {
        if (allExact)
            return forEach(count, [&](size_t i) { copyChannels<target>(destination[i], blended[i]); });
        forEach(count, [&](size_t i) {
            if (exact(i))
                copyChannels<target>(destination[i], blended[i]);
            else
                general(i);
        });
    }

    void sample(Pixel& destination, float y, float x) const {
        const SamplePoint point = makeSamplePoint(y, x, source_.width, source_.height);
        sampleBilinear(point, destination, source_, target, SampleEdge::Repeat);
    }

    const ImageBuffer& source_;
    int32_t stride_;
    bool splitsX_, splitsY_;
};

/// Calls `work` with the target as a compile-time constant: what is none of the first two is alpha.
template <class Work>
decltype(auto) withTarget(ChannelTarget target, Work&& work) {
    switch (target) {
        case ChannelTarget::RGBA:
            return work(std::integral_constant<ChannelTarget, ChannelTarget::RGBA>());
        case ChannelTarget::RGB:
            return work(std::integral_constant<ChannelTarget, ChannelTarget::RGB>());
        default:
            return work(std::integral_constant<ChannelTarget, ChannelTarget::Alpha>());
    }
}

/// Calls `work` with the sampler of `source` that `quality` and `target` ask for.
template <class Work>
decltype(auto) withSampler(const ImageBuffer& source, SampleQuality quality, ChannelTarget target,
                           Work&& work) {
    return withTarget(target, [&](auto constant) {
        constexpr ChannelTarget channels = decltype(constant)::value;
        if (quality == SampleQuality::Bilinear) return work(BilinearSampler<channels>(source));
        return work(NearestSampler<channels>(source));
    });
}

}  // namespace krl
