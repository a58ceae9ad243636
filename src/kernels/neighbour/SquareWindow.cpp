#include "kernels/neighbour/SquareWindow.h"

#include "core/ImageCopy.h"
#include "kernels/blend/AlphaScale.h"

// Both passes over one line of samples s, after its scaling by alpha where it is weighted:
//
//   out(x) = extreme of s(i) for i from x - half to x + half, from x = 2 half on; before that from x - half -
//   1
//            on, but without i = half - 1
//
// which `LineWindow::seededLate` says in entries and `RowWindows` and `ColumnWindows` make fast.
namespace krl {

namespace {

/// What the pass along a row makes of it for the pass down columns. `kWeighted` weighs colours by alpha,
/// and does so again in what it writes, as the column pass is to find them.
template <class Extreme, bool kWeighted>
void spreadRow(RowWindows& windows, const Pixel* row, int32_t width, Pixel* target) {
    if (kWeighted && !areOpaque(row, width)) {
        scaleByAlpha(row, target, width);
        windows.slide<Extreme>(target, target);
        ChannelMask(ChannelTarget::Alpha).write(target, row, width);
        scaleByAlpha(target, target, width);
    } else {
        windows.slide<Extreme>(row, target);
    }
}

/// Both passes over the whole picture, one after the other: for windows of any size.
template <class Extreme, bool kWeighted>
Status spreadInTwoPasses(const ImageEngine& engine, ChannelMask mask, int32_t half) {
    const ImageBuffer& image = *engine.buffer();
    const ScratchImage between(image);
    const Status rows = forEachRowWindow(
        engine, LineWindow::seededLate(half, image.width), [&](int32_t y, RowWindows& windows) {
            spreadRow<Extreme, kWeighted>(windows, image.row(y), image.width, between.view().row(y));
        });
    if (rows) return rows;
    const LineWindow window = LineWindow::seededLate(half, image.height);
    return forEachColumnSpan(
        engine, std::min(window.length, image.height), [&](IndexRange columns, Pixel* tails) {
            ColumnWindows<Extreme> windows(between.view(), columns, window, tails);
            for (int32_t y = 0; y < image.height; ++y)
                mask.write(image.row(y) + columns.first, windows.next(), columns.last - columns.first);
        });
}

/// Rows on either side of where bands meet, as they were before any band wrote: what a band reads
/// beyond its own.
class BandBorders {
public:
    BandBorders(const ImageBuffer& image, int32_t bands, int32_t reach)
        : width_(static_cast<size_t>(image.width)),
          rowsEach_(2 * reach + 1),
          pixels_(uint64_t(width_) * static_cast<uint64_t>(rowsEach_) * static_cast<uint64_t>(bands - 1)) {
        for (int32_t border = 1; border < bands; ++border)
            for (int32_t i = 0; i < rowsEach_; ++i) {
                const int32_t y = lineBand(image.height, bands, border).first - reach - 1 + i;
                if (y >= 0 && y < image.height)
                    std::memcpy(at(border, i), image.row(y), width_ * sizeof(Pixel));
            }
    }

    /// Row `distance` rows from the border before band `border`; -1 is the last before it.
    const Pixel* row(int32_t border, int32_t distance) const {
        return at(border, distance + rowsEach_ / 2 + 1);
    }

private:
    Pixel* at(int32_t border, int32_t i) const {
        return pixels_.data() +
               (static_cast<size_t>(border - 1) * static_cast<size_t>(rowsEach_) + static_cast<size_t>(i)) *
                   width_;
    }

    size_t width_;
    int32_t rowsEach_;
    Scratch<Pixel> pixels_;
};

/// Both passes in one for a band of rows, written in place: a row is spread along itself when it enters the
/// windows down the columns, and held for as long as they need it. As in `ColumnWindows` the entering rows
/// are cut into groups of a window's length, and every window is the tail of one group and the head of the
/// next.
template <class Extreme, bool kWeighted>
class RollingBand {
public:
    static uint64_t roomFor(const ImageBuffer& image, const LineWindow& along, const LineWindow& down) {
        return static_cast<uint64_t>(image.width) * (2 * static_cast<uint64_t>(down.length) + 1) +
               RowWindows::roomFor(along, image.width);
    }

    RollingBand(const ImageBuffer& image, const BandBorders& borders, int32_t bands, int32_t band,
                const LineWindow& along, const LineWindow& down, Pixel* room)
        : image_(image),
          borders_(borders),
          band_(band),
          rows_(lineBand(image.height, bands, band)),
          length_(down.length),
          down_(down),
          tails_(room),
          arriving_(tails_ + rowPixels(length_)),
          head_(arriving_ + rowPixels(length_)),
          windows_(along, image.width, head_ + image.width),
          entering_(rows_.first),
          at_(length_) {}

    void spread(ChannelMask mask) {
        if (rows_.first >= rows_.last) return;
        for (int32_t i = 0; i + 1 < length_; ++i) enter(i);
        for (int32_t y = rows_.first; y < rows_.last; ++y) mask.write(image_.row(y), next(), image_.width);
    }

private:
    /// The extremes of each column's window at the next row; good until the next call.
    const Pixel* next() {
        if (at_ == length_) beginGroup();
        const int32_t i = at_++;
        Pixel* tail = tails_ + rowPixels(i);
        if (i == 0) return tail;
        const Pixel* arrived = enter(i - 1);
        combine(i == 1 ? arrived : head_, arrived, head_);
        combine(head_, tail, tail);
        return tail;
    }

    /// The rows that have arrived become the extremes from each of them to the group's end.
    void beginGroup() {
        enter(length_ - 1);
        std::swap(tails_, arriving_);
        for (int32_t i = length_ - 2; i >= 0; --i)
            combine(tails_ + rowPixels(i), tails_ + rowPixels(i + 1), tails_ + rowPixels(i));
        at_ = 0;
    }

    /// Spreads the next row that enters the columns, as row `i` of the arriving group.
    const Pixel* enter(int32_t i) {
        Pixel* target = arriving_ + rowPixels(i);
        const auto y = static_cast<int32_t>(down_.sampleAt(entering_++));
        if (y < 0 || y >= image_.height)
            std::memset(target, Extreme::kOutside, static_cast<size_t>(image_.width) * sizeof(Pixel));
        else
            spreadRow<Extreme, kWeighted>(windows_, sourceRow(y), image_.width, target);
        return target;
    }
    const Pixel* sourceRow(int32_t y) const {
        if (y < rows_.first) return borders_.row(band_, y - rows_.first);
        if (y >= rows_.last) return borders_.row(band_ + 1, y - rows_.last);
        return image_.row(y);
    }

    ptrdiff_t rowPixels(int32_t rows) const { return ptrdiff_t(rows) * image_.width; }
    void combine(const Pixel* a, const Pixel* b, Pixel* result) const {
        combinePixels<Extreme>(a, b, image_.width, result);
    }

    const ImageBuffer& image_;
    const BandBorders& borders_;
    int32_t band_;
    IndexRange rows_;
    int32_t length_;  ///< of the windows down the columns
    LineWindow down_;
    Pixel *tails_, *arriving_, *head_;
    RowWindows windows_;
    int64_t entering_;  ///< the place down the columns at which the next row enters
    int32_t at_;        ///< the next row within its group
};

template <class Extreme, bool kWeighted>
Status spreadRolling(const ImageEngine& engine, ChannelMask mask, int32_t half) {
    const ImageBuffer& image = *engine.buffer();
    const int32_t bands = engine.getThreadCount();
    const LineWindow along = LineWindow::seededLate(half, image.width);
    const LineWindow down = LineWindow::seededLate(half, image.height);
    const BandBorders borders(image, bands, down.length / 2);
    const BandRoom room(bands, RollingBand<Extreme, kWeighted>::roomFor(image, along, down));
    return runBands(engine, bands, [&](int32_t band) {
        RollingBand<Extreme, kWeighted>(image, borders, bands, band, along, down, room.of(band)).spread(mask);
    });
}

}  // namespace

// Where bands are higher than the window, the rows that they hold and spread twice are few.
template <class Extreme, bool kWeighted>
Status spreadSquare(const ImageEngine& engine, ChannelMask mask, int32_t half) {
    const int32_t height = engine.buffer()->height;
    const bool isLow =
        LineWindow::seededLate(half, height).length <= ceilingShare(height, engine.getThreadCount());
    return isLow ? spreadRolling<Extreme, kWeighted>(engine, mask, half)
                 : spreadInTwoPasses<Extreme, kWeighted>(engine, mask, half);
}

template Status spreadSquare<Smallest, true>(const ImageEngine&, ChannelMask, int32_t);
template Status spreadSquare<Smallest, false>(const ImageEngine&, ChannelMask, int32_t);
template Status spreadSquare<Largest, true>(const ImageEngine&, ChannelMask, int32_t);

}  // namespace krl
