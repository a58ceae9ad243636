#include <algorithm>
#include <cstring>
#include <utility>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/ByteArithmetic.h"
#include "core/Doubts.h"
#include "core/ExactDivision.h"
#include "core/LookupTables.h"
#include "core/PixelWord.h"
#include "core/Scratch.h"
#include "effects/stylise/BrushBins.h"
#include "kernels/path/PixelFields.h"
#include "krlimage/stylise.h"

namespace krl {

namespace {

constexpr int32_t kMostSamples = (2 * kMostBrush + 1) * (2 * kMostBrush + 1);

/// The picture as the brush sees it: colours scaled by alpha, and in place of alpha the number of the
/// bin that a pixel's brightness falls into.
class Palette {
public:
    Palette(const ImageBuffer& image, int32_t intensity)
        : image_(image),
          levelScale_(intensity / 255.0),
          pixels_(static_cast<size_t>(image.width) * static_cast<size_t>(image.height)) {}

    void mixRow(const LookupTables& tables, int32_t y) const {
        int32_t doubts[kSpan];
        for (int32_t x = 0; x < image_.width; x += kSpan) {
            const Pixel* row = image_.row(y) + x;
            Pixel* mixed = at(y) + x;
            const int32_t count = std::min(kSpan, image_.width - x);
            const bool any = mixSpan(row, count, static_cast<float>(levelScale_), mixed, doubts);
            settleDoubts(any, doubts, count, [&](int32_t i) { mixed[i].alpha = binOf(tables, row[i]); });
        }
    }

    uint8_t binOf(const LookupTables& tables, Pixel p) const {
        const double luma =
            double(tables.lumaRed[p.red]) + tables.lumaGreen[p.green] + tables.lumaBlue[p.blue];
        return static_cast<uint8_t>(truncate(luma * levelScale_));
    }

    Pixel* at(int32_t y) const { return pixels_.data() + ptrdiff_t(y) * image_.width; }
    int32_t width() const { return image_.width; }
    int32_t height() const { return image_.height; }

private:
    const ImageBuffer& image_;
    double levelScale_;
    Scratch<Pixel> pixels_;
};

/// The mean of every number of samples.
struct Means {
    ByteMean of[kMostSamples + 1];
};
constexpr Means kMeans = []<size_t... Count>(std::index_sequence<Count...>) {
    return Means{{ByteMean(1), ByteMean(int32_t(Count) + 1)...}};
}
(std::make_index_sequence<size_t(kMostSamples)>());

/// The histograms of the columns of pixels under the brush, for a strip of the picture and the brush's reach
/// to both sides of it: how many pixels each bin holds, and the sums of their colours.
class Columns {
public:
    static constexpr int32_t kStrip = Winners::kStrip, kMostColumns = kStrip + 2 * kMostBrush;
    explicit Columns(int32_t bins)
        : bins_(bins), stride_(static_cast<size_t>(bins | 1)), colours_(kMostColumns * stride_) {}

    int32_t bins() const { return bins_; }
    /// Counters of a bin, column by column.
    const int8_t* counts(int32_t bin) const { return counts_[bin]; }
    /// Whether a pixel in a row from `y` on has been of this bin.
    bool isSince(int32_t y, int32_t bin) const { return lastRow_[bin] >= y; }
    /// Sums of a bin's colours, column by column.
    const uint64_t* colours(int32_t column, int32_t bin) const {
        return colours_.data() + static_cast<size_t>(column) * stride_ + bin;
    }
    size_t stride() const { return stride_; }

    void clear() {
        std::memset(counts_, 0, sizeof counts_);
        std::fill_n(lastRow_, bins_, -1);
        std::fill(colours_.begin(), colours_.end(), uint64_t{});
    }
    /// Adds `count` pixels of row `y`, one to each column from `column` on.
    void add(const Pixel* pixels, int32_t count, int32_t column, int32_t y) {
        uint64_t* colours = colours_.data() + static_cast<size_t>(column) * stride_;
        for (int32_t i = 0; i < count; ++i, colours += stride_) {
            const Pixel p = pixels[i];
            ++counts_[p.alpha][column + i];
            colours[p.alpha] += fieldsOf(p);
            lastRow_[p.alpha] = y;
        }
    }
    void remove(const Pixel* pixels, int32_t count, int32_t column) {
        uint64_t* colours = colours_.data() + static_cast<size_t>(column) * stride_;
        for (int32_t i = 0; i < count; ++i, colours += stride_) {
            const Pixel p = pixels[i];
            --counts_[p.alpha][column + i];
            colours[p.alpha] -= fieldsOf(p);
        }
    }

private:
    int32_t bins_;
    size_t stride_;  ///< of columns; odd, so that a bin of all columns does not crowd one set of the cache
    int8_t counts_[256][kMostColumns];
    int32_t lastRow_[256];
    Scratch<uint64_t> colours_;
};

/// Paints pixels in the mean colour of their winners.
template <int32_t kBrush>
void paintWinners(const Columns& columns, const Winners& winners, Pixel* row, int32_t width) {
    const size_t stride = columns.stride();
    for (int32_t x = 0; x < width; ++x) {
        const uint64_t* colours = columns.colours(x, winners.bin[x]);
        uint64_t sums = *colours;
        for (int32_t i = 1; i <= 2 * kBrush; ++i) sums += *(colours += stride);
        const ByteMean mean = kMeans.of[winners.count[x]];
        row[x] = {mean(blueField(sums)), mean(greenField(sums)), mean(redField(sums)), row[x].alpha};
    }
}

/// The loops over a brush's columns, which are unrolled for each size.
struct BrushLoops {
    void (*paint)(const Columns&, const Winners&, Pixel*, int32_t);
};
template <int32_t kBrush>
constexpr BrushLoops kLoopsOf{paintWinners<kBrush>};
constexpr BrushLoops kLoops[] = {kLoopsOf<1>, kLoopsOf<2>, kLoopsOf<3>, kLoopsOf<4>, kLoopsOf<kMostBrush>};
static_assert(kMostSamples < 128);

/// Paints strips of the picture from top to bottom. The brush's histogram is the sum of those of its columns;
/// of colours, only the fullest bin's are summed.
class StripPainter {
public:
    StripPainter(const Palette& palette, int32_t brushSize, int32_t bins)
        : palette_(palette), brush_(brushSize), columns_(bins) {}

    /// Paints `width` pixels from column `left` on in `rows` of `image`.
    void paint(const ImageEngine& engine, IndexRange rows, int32_t left, int32_t width) {
        first_ = std::max(0, left - brush_);
        count_ = std::min(palette_.width(), left + width + brush_) - first_;
        column_ = first_ - (left - brush_);
        columns_.clear();
        for (int32_t y = std::max(0, rows.first - brush_); y < rows.first + brush_; ++y) add(y);
        for (int32_t y = rows.first; y < rows.last; ++y) {
            engine.throwIfCancelled();
            add(y + brush_);
            if (y > rows.first && y > brush_)
                columns_.remove(palette_.at(y - brush_ - 1) + first_, count_, column_);
            paintRow(engine.buffer()->row(y) + left, width, y);
        }
    }

private:
    void add(int32_t y) {
        if (y < palette_.height()) columns_.add(palette_.at(y) + first_, count_, column_, y);
    }

    void paintRow(Pixel* row, int32_t width, int32_t y) const {
        const BrushLoops& loops = kLoops[brush_ - 1];
        Winners winners = {};
        for (int32_t bin = 0; bin < columns_.bins(); ++bin)
            if (columns_.isSince(y - brush_, bin))
                challenge(brush_, columns_.counts(bin), static_cast<uint8_t>(bin), winners);
        loops.paint(columns_, winners, row, width);
    }

    const Palette& palette_;
    int32_t brush_;
    int32_t first_ = 0, count_ = 0;  ///< columns of the picture that the strip's brushes reach
    int32_t column_ = 0;             ///< the first one's number in `columns_`
    Columns columns_;
};

}  // namespace

/// The mean colour of those around a pixel that share the most frequent level of brightness.
Status oilPaint(ImageEngine& engine, int32_t brushSize, int32_t intensity) {
    if (Status state = engine.imageStatus()) return state;
    const int32_t size = clampTo(brushSize, 1, kMostBrush), levels = clampTo(intensity, 10, 255);
    const Palette palette(*engine.buffer(), levels);
    const Status mixed = forEachRow(engine, [&](Pixel*, int32_t y) { palette.mixRow(engine.tables(), y); });
    if (mixed) return mixed;
    return forEachRowRange(engine, [&](IndexRange rows) {
        StripPainter painter(palette, size, levels + 1);
        const int32_t width = palette.width();
        for (int32_t left = 0; left < width; left += std::min(Columns::kStrip, width - left))
            painter.paint(engine, rows, left, std::min(Columns::kStrip, width - left));
    });
}

void describeOilPaint(Catalogue& catalogue) {
    catalogue.add("krlImageOilPaint", oilPaint)
        .summary("Paints over the picture in strokes of its own colours.")
        .words("painting, brush, artistic, canvas, strokes")
        .integer("brushSize", {.from = 1, .to = 5, .example = 4, .least = 1, .most = 5, .pixels = true},
                 "pixels that a stroke reaches to each side")
        .integer("intensity", {.from = 10, .to = 255, .example = 30, .least = 10, .most = 255},
                 "levels of brightness to distinguish; few give broad strokes")
        .inputFailure("Oil Paint input failure (Image)")
        .failed("Failed Oil Paint function (Image)");
}

}  // namespace krl
