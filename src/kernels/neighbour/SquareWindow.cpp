#include "kernels/neighbour/SquareWindow.h"

#include "core/ImageCopy.h"
#include "kernels/blend/AlphaScale.h"
#include "kernels/neighbour/RollingSquares.h"

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

/// Both passes in one for each band of rows, written in place.
template <class Extreme, bool kWeighted>
Status spreadRolling(const ImageEngine& engine, ChannelMask mask, int32_t half) {
    const ImageBuffer& image = *engine.buffer();
    const int32_t bands = engine.getThreadCount();
    const LineWindow along = LineWindow::seededLate(half, image.width);
    const LineWindow down = LineWindow::seededLate(half, image.height);
    const BandBorders borders(image, bands, down.length / 2);
    const BandRoom room(bands, roomForSquares(image.width, along, down));
    return runBands(engine, bands, [&](int32_t band) {
        const IndexRange rows = lineBand(image.height, bands, band);
        if (rows.first >= rows.last) return;
        const auto sourceRow = [&](int32_t y) -> const Pixel* {
            if (y < rows.first) return borders.row(band, y - rows.first);
            if (y >= rows.last) return borders.row(band + 1, y - rows.last);
            return image.row(y);
        };
        RollingSquares squares(Extreme(), image.width, image.height, rows.first, along, down, room.of(band),
                               [&](RowWindows& windows, int32_t y, Pixel* target) {
                                   spreadRow<Extreme, kWeighted>(windows, sourceRow(y), image.width, target);
                               });
        for (int32_t y = rows.first; y < rows.last; ++y) {
            engine.throwIfCancelled();
            mask.write(image.row(y), squares.next(), image.width);
        }
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
