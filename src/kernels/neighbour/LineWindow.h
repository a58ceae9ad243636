#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/Bands.h"
#include "core/Scratch.h"
#include "krlimage/engine.h"

/// Minimum or maximum of a window that slides along a line, in time that hardly depends on the
/// window's length.
///
/// Along a row, the extremes of 1, 2, 4, 8 ... entries from each place on are made of one another, and
/// two of the last give the window's. Down columns, a run of adjacent columns is walked row by row:
/// the entries are cut into blocks of a window's length, every window is the tail of one block and
/// the head of the next, and three combinations for each row are all, whatever the length.
namespace krl {

/// The smallest byte of a window; an entry from outside the line never wins.
struct Smallest {
    static constexpr uint8_t kOutside = 255;
    static void combine(const uint8_t* a, const uint8_t* b, int64_t bytes, uint8_t* result);
};

/// The largest byte of a window; an entry from outside the line never wins.
struct Largest {
    static constexpr uint8_t kOutside = 0;
    static void combine(const uint8_t* a, const uint8_t* b, int64_t bytes, uint8_t* result);
};

template <class Extreme>
void combinePixels(const Pixel* a, const Pixel* b, int64_t pixels, Pixel* result) {
    Extreme::combine(&a->blue, &b->blue, pixels * int64_t(sizeof(Pixel)), &result->blue);
}

/// Where a window lies on a line. The line, less the sample `skipped`, is entered after `lead` entries
/// from outside; the window of result `x` is the `length` entries from entry `x` on.
struct LineWindow {
    static constexpr int32_t kNone = INT32_MAX;

    int32_t length = 1;
    int32_t lead = 0;
    int32_t skipped = kNone;

    /// `half` samples to each side. A negative `half` counts as 0, and one that reaches beyond both
    /// ends of `count` samples from everywhere as the least that does.
    static LineWindow centred(int32_t half, int32_t count);
    /// The same window as a ring is seeded for it that starts one sample late: the sample before
    /// number `half` is passed over, and while the ring still holds what came before that sample,
    /// the window lies one sample further back.
    static LineWindow seededLate(int32_t half, int32_t count);
    /// The `2 * half + 1` samples that end at `x`.
    static LineWindow before(int32_t half, int32_t count);
    /// The `2 * half + 1` samples that begin at `x`, but for sample 0, which counts as outside.
    static LineWindow afterFirst(int32_t half, int32_t count);

    /// Entries that `count` results are made of.
    int64_t entries(int32_t count) const { return int64_t(count) + length - 1; }
    /// The sample that enters at `place`; negative or `count` and above for one from outside.
    int64_t sampleAt(int64_t place) const {
        const int64_t sample = place - lead;
        return sample >= skipped ? sample + 1 : sample;
    }
};

/// Slides windows along rows; the working room of one band.
class RowWindows {
public:
    /// Pixels of room that a row of `count` needs.
    static uint64_t roomFor(const LineWindow& window, int32_t count) {
        return 2 * static_cast<uint64_t>(window.entries(count));
    }
    RowWindows(const LineWindow& window, int32_t count, Pixel* room)
        : window_(window), count_(count), now_(room), next_(room + window.entries(count)) {}

    /// Writes one pixel for each of the row's, every byte the extreme of its window. The row may be
    /// written itself.
    template <class Extreme>
    void slide(const Pixel* row, Pixel* extremes) {
        const int64_t reach = widen<Extreme>(row);
        combinePixels<Extreme>(now_, now_ + window_.length - reach, count_, extremes);
    }
    /// The same into the band's own room; good until the next call.
    template <class Extreme>
    const Pixel* slide(const Pixel* row) {
        const int64_t reach = widen<Extreme>(row);
        combinePixels<Extreme>(now_, now_ + window_.length - reach, count_, next_);
        return next_;
    }

private:
    /// Leaves in `now_` the extremes of the largest power of 2 that the window holds, and returns it.
    template <class Extreme>
    int64_t widen(const Pixel* row) {
        layEntries(row, Extreme::kOutside);
        int64_t reach = 1, left = window_.entries(count_);
        for (; 2 * reach <= window_.length; reach *= 2) {
            left -= reach;
            combinePixels<Extreme>(now_, now_ + reach, left, next_);
            std::swap(now_, next_);
        }
        return reach;
    }
    void layEntries(const Pixel* row, uint8_t outside);

    LineWindow window_;
    int32_t count_;
    Pixel *now_, *next_;
};

/// Adjacent columns that are walked down together: enough for whole cache lines and few page changes.
inline constexpr int32_t kColumnsAtOnce = 256;

/// Windows that slide down up to `kColumnsAtOnce` columns of `picture` side by side, row by row from the
/// first. `tails` has room for a window's length of rows, or for all if they are fewer.
template <class Extreme>
class ColumnWindows {
public:
    ColumnWindows(const ImageBuffer& picture, IndexRange columns, const LineWindow& window, Pixel* tails)
        : picture_(picture), columns_(columns), window_(window), tails_(tails) {
        std::memset(outside_, Extreme::kOutside, sizeof outside_);
    }

    /// The extremes of each column's window at the next row; good until the next call.
    const Pixel* next() {
        if (at_ == window_.length) {
            start_ += window_.length;
            at_ = 0;
        }
        const int64_t i = at_++;
        if (i == 0) {
            beginBlock();
            return tails_;
        }
        combine(head_, entry(start_ + window_.length + i - 1), head_);
        combine(head_, tails_ + i * width(), result_);
        return result_;
    }

private:
    void beginBlock() {
        const Pixel* tail = outside_;
        for (int64_t i = window_.length - 1; i >= 0; --i) {
            Pixel* longer = start_ + i < picture_.height ? tails_ + i * width() : head_;
            combine(tail, entry(start_ + i), longer);
            tail = longer;
        }
        std::memcpy(head_, outside_, sizeof head_);
    }
    const Pixel* entry(int64_t place) const {
        const int64_t y = window_.sampleAt(place);
        return y >= 0 && y < picture_.height ? picture_.row(static_cast<int32_t>(y)) + columns_.first
                                             : outside_;
    }
    void combine(const Pixel* a, const Pixel* b, Pixel* out) const {
        combinePixels<Extreme>(a, b, width(), out);
    }
    int32_t width() const { return columns_.last - columns_.first; }

    const ImageBuffer picture_;
    const IndexRange columns_;
    const LineWindow window_;
    Pixel* const tails_;
    int64_t start_ = 0;  ///< the first row of the block
    int64_t at_ = 0;     ///< the next row within it
    Pixel outside_[kColumnsAtOnce], head_[kColumnsAtOnce], result_[kColumnsAtOnce];
};

/// Working room for each band, taken before any band runs.
class BandRoom {
public:
    BandRoom(int32_t bands, uint64_t pixels)
        : each_(static_cast<size_t>(pixels)), pixels_(pixels * static_cast<uint64_t>(bands)) {}

    Pixel* of(int32_t band) const { return pixels_.data() + static_cast<size_t>(band) * each_; }

private:
    size_t each_;
    Scratch<Pixel> pixels_;
};

/// Calls `work(y, windows)` for every row, with the windows of the row's band.
template <class Work>
Status forEachRowWindow(const ImageEngine& engine, const LineWindow& window, Work&& work) {
    const ImageBuffer& image = *engine.buffer();
    const int32_t bands = engine.getThreadCount();
    const BandRoom room(bands, RowWindows::roomFor(window, image.width));
    return runBands(engine, bands, [&](int32_t band) {
        RowWindows windows(window, image.width, room.of(band));
        const IndexRange rows = lineBand(image.height, bands, band);
        for (int32_t y = rows.first; y < rows.last; ++y) {
            engine.throwIfCancelled();
            work(y, windows);
        }
    });
}

/// Calls `work(columns, room)` for runs of at most `kColumnsAtOnce` columns, with as many pixels of
/// room as `roomRows` rows of a run have.
template <class Work>
Status forEachColumnSpan(const ImageEngine& engine, int64_t roomRows, Work&& work) {
    const int32_t bands = engine.getThreadCount(), width = engine.buffer()->width;
    const int32_t widest = std::min(kColumnsAtOnce, ceilingShare(width, bands));
    const BandRoom room(bands, static_cast<uint64_t>(roomRows) * static_cast<uint64_t>(widest));
    return runBands(engine, bands, [&](int32_t band) {
        const IndexRange share = lineBand(width, bands, band);
        for (int32_t x = share.first; x < share.last; x += kColumnsAtOnce) {
            engine.throwIfCancelled();
            work(IndexRange{x, x + std::min(share.last - x, kColumnsAtOnce)}, room.of(band));
        }
    });
}

}  // namespace krl
