#pragma once

#include <utility>

#include "kernels/neighbour/LineWindow.h"

namespace krl {

/// Pixels of room that `RollingSquares` take for rows of `width` pixels.
inline uint64_t roomForSquares(int32_t width, const LineWindow& along, const LineWindow& down) {
    return static_cast<uint64_t>(width) * (2 * static_cast<uint64_t>(down.length) + 1) +
           RowWindows::roomFor(along, width);
}

/// The extremes of the squares around the pixels of adjacent rows, row by row. A row is spread along itself when it
/// enters the windows down the columns, and held for as long as they need it, so that nothing but room for some rows is
/// read and written. As in `ColumnWindows` the entering rows are cut into groups of a window's length, and every window
/// is the tail of one group and the head of the next.
///
/// `SpreadRow` is called as `spreadRow(windows, y, target)` for every row within the picture that the windows reach, from
/// the top, and writes the extremes along row `y` to `target`.
template <class Extreme, class SpreadRow>
class RollingSquares {
public:
    /// Begins at row `first` of a picture of the given size, with `roomForSquares` pixels of room.
    RollingSquares(Extreme, int32_t width, int32_t height, int32_t first, const LineWindow& along,
                   const LineWindow& down, Pixel* room, SpreadRow spreadRow)
        : width_(width),
          height_(height),
          down_(down),
          tails_(room),
          arriving_(tails_ + rowPixels(down.length)),
          head_(arriving_ + rowPixels(down.length)),
          windows_(along, width, head_ + width),
          spreadRow_(std::move(spreadRow)),
          entering_(first),
          at_(down.length) {
        for (int32_t i = 0; i + 1 < down_.length; ++i) enter(i);
    }

    /// The extremes around each pixel of the next row; good until the next call.
    const Pixel* next() {
        if (at_ == down_.length) beginGroup();
        const int32_t i = at_++;
        Pixel* tail = tails_ + rowPixels(i);
        if (i == 0) return tail;
        const Pixel* arrived = enter(i - 1);
        combine(i == 1 ? arrived : head_, arrived, head_);
        combine(head_, tail, tail);
        return tail;
    }

private:
    /// The rows that have arrived become the extremes from each of them to the group's end.
    void beginGroup() {
        enter(down_.length - 1);
        std::swap(tails_, arriving_);
        for (int32_t i = down_.length - 2; i >= 0; --i)
            combine(tails_ + rowPixels(i), tails_ + rowPixels(i + 1), tails_ + rowPixels(i));
        at_ = 0;
    }

    /// Spreads the next row that enters the columns, as row `i` of the arriving group.
    const Pixel* enter(int32_t i) {
        Pixel* target = arriving_ + rowPixels(i);
        const auto y = static_cast<int32_t>(down_.sampleAt(entering_++));
        if (y < 0 || y >= height_)
            std::memset(target, Extreme::kOutside, static_cast<size_t>(width_) * sizeof(Pixel));
        else
            spreadRow_(windows_, y, target);
        return target;
    }

    ptrdiff_t rowPixels(int32_t rows) const { return ptrdiff_t(rows) * width_; }
    void combine(const Pixel* a, const Pixel* b, Pixel* result) const {
        combinePixels<Extreme>(a, b, width_, result);
    }

    int32_t width_, height_;
    LineWindow down_;
    Pixel *tails_, *arriving_, *head_;
    RowWindows windows_;
    SpreadRow spreadRow_;
    int64_t entering_;  ///< the place down the columns at which the next row enters
    int32_t at_;        ///< the next row within its group
};

}  // namespace krl
