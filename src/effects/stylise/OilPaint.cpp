#include <algorithm>
#include <cstring>
#include <utility>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/ExactDivision.h"
#include "core/LookupTables.h"
#include "core/Scratch.h"
#include "kernels/blend/AlphaScale.h"
#include "kernels/path/PixelFields.h"
#include "krlimage/stylise.h"

namespace krl {

namespace {

constexpr int32_t kMostBrush = 5;
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
        const Pixel* row = image_.row(y);
        Pixel* mixed = at(y);
        for (int32_t x = 0; x < image_.width; ++x) {
            const Pixel p = row[x];
            const double luma =
                double(tables.lumaRed[p.red]) + tables.lumaGreen[p.green] + tables.lumaBlue[p.blue];
            mixed[x] = scaledByAlpha(p);
            mixed[x].alpha = static_cast<uint8_t>(truncate(luma * levelScale_));
        }
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

/// The histogram under the brush: how many pixels each bin holds, and the sums of their colours.
class Brush {
public:
    explicit Brush(int32_t bins) : scanned_((bins + 15) / 16 * 16) {}

    void lift() {
        std::memset(counts_, 0, sizeof counts_);
        std::memset(colours_, 0, sizeof colours_);
    }
    void add(Pixel p) {
        ++counts_[p.alpha];
        colours_[p.alpha] += fieldsOf(p);
    }
    void remove(Pixel p) {
        --counts_[p.alpha];
        colours_[p.alpha] -= fieldsOf(p);
    }

    /// Mean colour of the fullest bin, the lowest of equals.
    Pixel colour(uint8_t alpha) const {
        uint8_t most = 0;
        for (int32_t i = 0; i < scanned_; ++i) most = counts_[i] > most ? counts_[i] : most;
        const auto* found =
            static_cast<const uint8_t*>(std::memchr(counts_, most, static_cast<size_t>(scanned_)));
        const uint64_t sums = colours_[found - counts_];
        const ByteMean mean = kMeans.of[most];
        return {mean(blueField(sums)), mean(greenField(sums)), mean(redField(sums)), alpha};
    }

private:
    int32_t scanned_;  ///< bins to look through, in whole vectors
    uint8_t counts_[256];
    uint64_t colours_[256];
};

/// Paints one row, sliding the brush along it.
void paintRow(const Palette& palette, int32_t brushSize, int32_t y, Brush& brush, Pixel* row) {
    const int32_t width = palette.width();
    const int32_t top = std::max(0, y - brushSize), bottom = std::min(palette.height() - 1, y + brushSize);
    const auto forColumn = [&](int32_t x, const auto& each) {
        const Pixel* p = palette.at(top) + x;
        for (int32_t i = top; i <= bottom; ++i, p += width) each(*p);
    };
    const auto add = [&](Pixel p) { brush.add(p); };
    const auto remove = [&](Pixel p) { brush.remove(p); };
    brush.lift();
    for (int32_t x = 0; x < std::min(brushSize, width); ++x) forColumn(x, add);
    for (int32_t x = 0; x < width; ++x) {
        if (x + brushSize < width) forColumn(x + brushSize, add);
        if (x - brushSize > 0) forColumn(x - brushSize - 1, remove);
        row[x] = brush.colour(row[x].alpha);
    }
}

}  // namespace

/// The mean colour of those around a pixel that share the most frequent level of brightness.
Status oilPaint(ImageEngine& engine, int32_t brushSize, int32_t intensity) {
    if (Status state = engine.imageStatus()) return state;
    const int32_t size = clampTo(brushSize, 1, kMostBrush), levels = clampTo(intensity, 10, 255);
    const Palette palette(*engine.buffer(), levels);
    const Status mixed = forEachRow(engine, [&](Pixel*, int32_t y) { palette.mixRow(engine.tables(), y); });
    if (mixed) return mixed;
    return forEachRowRange(engine, [&](IndexRange rows) {
        Brush brush(levels + 1);
        for (int32_t y = rows.first; y < rows.last; ++y) {
            engine.throwIfCancelled();
            paintRow(palette, size, y, brush, engine.buffer()->row(y));
        }
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
