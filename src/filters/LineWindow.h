#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/Bands.h"
#include "core/ImageEngine.h"
#include "core/Scratch.h"

/// Minimum or maximum of a window that slides along a line, in time that does not depend on the
/// window's length. Sixteen adjacent lines, rows or columns, are walked side by side, so that each
/// step is a few vector operations and a walk down columns still reads memory in rows.
namespace krl {

/// The smallest byte of a window; a sample outside the line never wins.
struct Smallest {
    static constexpr uint8_t kOutside = 255;
    static constexpr uint8_t of(uint8_t a, uint8_t b) { return a < b ? a : b; }
};

/// The largest byte of a window; a sample outside the line never wins.
struct Largest {
    static constexpr uint8_t kOutside = 0;
    static constexpr uint8_t of(uint8_t a, uint8_t b) { return a > b ? a : b; }
};

/// Where a window lies on a line. The line, less the sample `skipped`, is entered after `lead`
/// samples from outside; the window of result `x` is the `length` entries from entry `x` on.
struct LineWindow {
    static constexpr int32_t kNone = INT32_MAX;

    int32_t length = 1;
    int32_t lead = 0;
    int32_t skipped = kNone;

    /// `half` samples to each side. A negative `half` counts as 0, as does for `count` samples
    /// whatever reaches beyond both ends from everywhere.
    static LineWindow centred(int32_t half, int32_t count);
    /// The same window as a ring is seeded for it that starts one sample late: the sample before
    /// number `half` is passed over, and while the ring still holds what came before that sample,
    /// the window lies one sample further back.
    static LineWindow seededLate(int32_t half, int32_t count);
    /// The `2 * half + 1` samples that end at `x`.
    static LineWindow before(int32_t half, int32_t count);
    /// The `2 * half + 1` samples that begin at `x`, but for sample 0, which counts as outside.
    static LineWindow afterFirst(int32_t half, int32_t count);
};

/// Pixels at the same place of sixteen adjacent lines.
struct Lanes {
    static constexpr int32_t kCount = 16;

    uint8_t byte[kCount * sizeof(Pixel)];

    static Lanes filled(uint8_t value) {
        Lanes lanes;
        std::memset(lanes.byte, value, sizeof lanes.byte);
        return lanes;
    }
    Pixel pixel(int32_t lane) const {
        Pixel p;
        std::memcpy(&p, byte + lane * sizeof(Pixel), sizeof p);
        return p;
    }
    void setPixel(int32_t lane, Pixel p) { std::memcpy(byte + lane * sizeof(Pixel), &p, sizeof p); }
};
static_assert(Lanes::kCount == kTileColumns);

template <class Extreme>
Lanes combined(const Lanes& a, const Lanes& b) {
    Lanes result;
    for (size_t i = 0; i < sizeof result.byte; ++i) result.byte[i] = Extreme::of(a.byte[i], b.byte[i]);
    return result;
}

/// Calls `emit(x, lanes)` for every place of `count`, rising, with the extreme of its window.
///
/// The entries are cut into blocks of a window's length. A window is the tail of one block and the
/// head of the next, so the extremes of a block's tails, made walking back, and a running extreme of
/// the heads give every window with three combinations for each entry. `tails` has room for `count`.
template <class Extreme, class Emit>
void slideWindow(const Lanes* line, int32_t count, const LineWindow& window, Lanes* tails, Emit&& emit) {
    const Lanes outside = Lanes::filled(Extreme::kOutside);
    const auto entry = [&](int64_t place) -> const Lanes& {
        int64_t i = place - window.lead;
        if (i >= window.skipped) ++i;
        return i >= 0 && i < count ? line[i] : outside;
    };
    for (int64_t start = 0; start < count; start += window.length) {
        const int64_t results = std::min<int64_t>(window.length, count - start);
        Lanes tail = outside;
        for (int64_t i = window.length - 1; i >= 0; --i) {
            tail = combined<Extreme>(tail, entry(start + i));
            if (i < results) tails[i] = tail;
        }
        emit(static_cast<int32_t>(start), tails[0]);
        Lanes head = outside;
        for (int64_t i = 1; i < results; ++i) {
            head = combined<Extreme>(head, entry(start + window.length + i - 1));
            emit(static_cast<int32_t>(start + i), combined<Extreme>(head, tails[i]));
        }
    }
}

/// Up to sixteen adjacent rows, or columns, of a picture.
struct LineBundle {
    uint8_t* first;
    ptrdiff_t acrossBytes;  ///< from a line to the next
    ptrdiff_t alongBytes;   ///< from a pixel of a line to its next
    int32_t lines;
    int32_t length;

    static LineBundle ofRows(const ImageBuffer& image, IndexRange rows) {
        return {reinterpret_cast<uint8_t*>(image.row(rows.first)), image.rowBytes, sizeof(Pixel),
                rows.last - rows.first, image.width};
    }
    static LineBundle ofColumns(const ImageBuffer& image, IndexRange columns) {
        return {reinterpret_cast<uint8_t*>(image.row(0) + columns.first), sizeof(Pixel), image.rowBytes,
                columns.last - columns.first, image.height};
    }

    Pixel& at(int32_t line, int32_t place) const {
        return *reinterpret_cast<Pixel*>(first + line * acrossBytes + place * alongBytes);
    }
    /// Reads the lines into `lanes`, one entry for each place.
    void gather(Lanes* lanes) const;
};

/// Working room for each band's bundle, taken before any band runs.
class BundleRoom {
public:
    BundleRoom(int32_t bands, int32_t longestLine)
        : longest_(static_cast<size_t>(longestLine)),
          lanes_(kParts * longest_ * static_cast<size_t>(bands)) {}

    Lanes* line(int32_t band) const { return part(band, 0); }
    Lanes* tails(int32_t band) const { return part(band, 1); }
    /// A second line, for effects that hold two extremes side by side.
    Lanes* other(int32_t band) const { return part(band, 2); }

private:
    static constexpr size_t kParts = 3;

    Lanes* part(int32_t band, size_t index) const {
        return lanes_.data() + (static_cast<size_t>(band) * kParts + index) * longest_;
    }

    size_t longest_;
    Scratch<Lanes> lanes_;
};

/// Calls `work(band, IndexRange)` for bundles of at most sixteen of `lineCount` lines, banded.
template <class Work>
Status forEachBundle(const ImageEngine& engine, int32_t lineCount, Work&& work) {
    const int32_t bands = engine.getThreadCount();
    return runBands(bands, [&](int32_t band) {
        const IndexRange share = lineBand(lineCount, bands, band);
        for (int32_t line = share.first; line < share.last; line += Lanes::kCount)
            work(band, IndexRange{line, std::min(share.last - line, Lanes::kCount) + line});
    });
}

}  // namespace krl
