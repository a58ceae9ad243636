#pragma once

#include <type_traits>

#include "core/Doubts.h"
#include "core/Numbers.h"
#include "kernels/sample/SampleSpan.h"
#include "krlimage/engine.h"
#include "krlimage/options.h"
#include "krlimage/pixel.h"

/// How the warps read a picture between its pixels. `standard` takes the pixel that truncation leads
/// to; `bilinear` weighs four, and knows what to do where some of them are missing. A warp reads a
/// copy and writes the image, both of the same geometry.
namespace krl {

/// What replaces the samples beyond the border.
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
/// into the rows beside. Each operation writes at most `kBatchPixels` pixels.
template <ChannelTarget target>
class NearestSampler {
public:
    static constexpr SampleQuality kQuality = SampleQuality::Standard;

    explicit NearestSampler(const ImageBuffer& source)
        : source_(source), stride_(source.rowBytes / static_cast<int32_t>(sizeof(Pixel))) {}

    /// From the places (`x[i]`, `y[i]`).
    void sample(Pixel* destination, const float* y, const float* x, size_t count) const {
        Pixel nearest[kBatchPixels];
        nearestPixels(source_.row(0), stride_, y, x, count, source_.height - 1, source_.width - 1, nearest);
        for (size_t i = 0; i < count; ++i) copyChannels<target>(destination[i], nearest[i]);
    }
    /// From the places `x[i]` after the beginning of row `y`; those beyond its ends are in the rows beside.
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

/// Bilinear sampling of a picture with repeated edges: `sampleBilinear` at `makeSamplePoint`, in whole
/// numbers for the places whose four samples all exist. Each operation writes at most
/// `kBatchPixels` pixels.
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
    void sample(Pixel* destination, const float* y, const float* x, size_t count) const {
        const auto general = [&](size_t i, Pixel& pixel) { samplePixel(pixel, y[i], x[i]); };
        if (!splitsX_ || !splitsY_) return sampleEach(destination, count, general);
        AxisBatch rows, columns;
        const bool doubtfulRows = splitPlaces(y, count, source_.height - 1, rows);
        const bool doubtfulColumns = splitPlaces(x, count, source_.width - 1, columns);
        Pixel blended[kBatchPixels];
        blendSquares(source_.row(0), stride_, rows, columns, count, blended);
        const bool any = doubtfulRows | doubtfulColumns;
        for (size_t i = 0; any && i < count; ++i) rows.doubt[i] |= columns.doubt[i];
        settle(any, blended, destination, rows, count, general);
        copy(destination, blended, count);
    }
    /// From the places `x[i]` of row `y`.
    void alongRow(Pixel* destination, int32_t y, const float* x, size_t count) const {
        const auto general = [&](size_t i, Pixel& pixel) { samplePixel(pixel, static_cast<float>(y), x[i]); };
        if (!splitsX_) return sampleEach(destination, count, general);
        AxisBatch columns;
        const bool doubtful = splitPlaces(x, count, source_.width - 1, columns);
        Pixel blended[kBatchPixels];
        blendAlongRow(source_.row(y), columns, count, blended);
        settle(doubtful, blended, destination, columns, count, general);
        copy(destination, blended, count);
    }
    /// From the places `y[i]` of the columns from `x` on.
    void downColumns(Pixel* destination, const float* y, int32_t x, size_t count) const {
        const auto general = [&](size_t i, Pixel& pixel) {
            samplePixel(pixel, y[i], static_cast<float>(x + static_cast<int32_t>(i)));
        };
        if (!splitsY_) return sampleEach(destination, count, general);
        AxisBatch rows;
        const bool doubtful = splitPlaces(y, count, source_.height - 1, rows);
        Pixel blended[kBatchPixels];
        blendDownColumns(source_.row(0) + x, stride_, rows, count, blended);
        settle(doubtful, blended, destination, rows, count, general);
        copy(destination, blended, count);
    }

private:
    template <class General>
    static void sampleEach(Pixel* destination, size_t count, General&& general) {
        for (size_t i = 0; i < count; ++i) general(i, destination[i]);
    }
    /// Replaces what is in doubt of `blended` by general samples, which may leave a pixel as it is.
    template <class General>
    static void settle(bool any, Pixel* blended, const Pixel* destination, const AxisBatch& axis,
                       size_t count, General&& general) {
        settleDoubts(any, axis.doubt, static_cast<int32_t>(count), [&](int32_t i) {
            blended[i] = destination[i];
            general(static_cast<size_t>(i), blended[i]);
        });
    }
    static void copy(Pixel* destination, const Pixel* blended, size_t count) {
        for (size_t i = 0; i < count; ++i) copyChannels<target>(destination[i], blended[i]);
    }

    void samplePixel(Pixel& destination, float y, float x) const {
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
