#include "kernels/blur/ChromaBox.h"

#include <algorithm>

#include "core/Bands.h"
#include "core/ExactDivision.h"
#include "core/PixelWord.h"
#include "core/Scratch.h"

namespace krl {

namespace {

/// Columns that are filtered side by side.
constexpr int32_t kTileWords = 64;

/// A line of places, `stride` words apart, each with one or more words side by side.
struct BoxLine {
    Pixel* first;
    ptrdiff_t stride;
    int32_t length;
    int32_t lanes;

    Pixel* at(int32_t place) const { return first + place * stride; }
};

/// Running sums of bytes 0 and 1 over the window, for up to `Lanes` lanes.
template <class Sum, int32_t Lanes>
class BoxSums {
public:
    explicit BoxSums(int32_t lanes) : lanes_(lanes) {}

    void add(const Pixel* words) {
        for (int32_t i = 0; i < lanes_; ++i) {
            const uint32_t word = wordOf(words[i]);
            u_[i] += word & 255u;
            v_[i] += word >> 8 & 255u;
        }
    }

    void subtract(const Pixel* words) {
        for (int32_t i = 0; i < lanes_; ++i) {
            const uint32_t word = wordOf(words[i]);
            u_[i] -= word & 255u;
            v_[i] -= word >> 8 & 255u;
        }
    }

    template <class Quotient>
    void writeMeans(Pixel* words, const Quotient& mean) const {
        for (int32_t i = 0; i < lanes_; ++i) {
            const uint32_t means = mean(u_[i]) | uint32_t{mean(v_[i])} << 8;
            storeWord(words[i], (wordOf(words[i]) & 0xFFFF0000u) | means);
        }
    }

private:
    const int32_t lanes_;
    Sum u_[Lanes] = {}, v_[Lanes] = {};
};

/// A window that reaches past both ends of a line from everywhere is as wide as any wider one.
int32_t reachOn(int32_t length, int32_t halfWidth) { return std::min(halfWidth, length); }

/// Filters `line` in place. `ring` has room for one place more than the reach: it keeps what has
/// been overwritten until it leaves the window.
template <class Quotient, int32_t Lanes>
void boxLine(const BoxLine& line, int32_t halfWidth, Pixel* ring) {
    const int32_t reach = reachOn(line.length, halfWidth);
    BoxSums<typename Quotient::Sum, Lanes> sums(line.lanes);
    int32_t count = std::min(reach + 1, line.length);
    for (int32_t place = 0; place < count; ++place) sums.add(line.at(place));

    int32_t divisor = count, slot = 0;
    Quotient mean(static_cast<uint64_t>(divisor));
    for (int32_t place = 0; place < line.length; ++place) {
        if (count != divisor) mean = Quotient(static_cast<uint64_t>(divisor = count));
        std::copy_n(line.at(place), line.lanes, ring + ptrdiff_t(slot) * line.lanes);
        sums.writeMeans(line.at(place), mean);
        slot = slot == reach ? 0 : slot + 1;
        if (line.length - place > reach + 1) {
            sums.add(line.at(place + reach + 1));
            ++count;
        }
        if (place >= reach) {
            sums.subtract(ring + ptrdiff_t(slot) * line.lanes);
            --count;
        }
    }
}

template <int32_t Lanes>
void boxLine(const BoxLine& line, int32_t halfWidth, Pixel* ring) {
    if (static_cast<uint64_t>(line.length) <= ByteQuotient::kLargestWeight) {
        boxLine<ByteQuotient, Lanes>(line, halfWidth, ring);
    } else {
        boxLine<WideByteQuotient, Lanes>(line, halfWidth, ring);
    }
}

/// One ring for each band, for lines up to `length`.
class Rings {
public:
    Rings(int32_t bandCount, int32_t length, int32_t halfWidth, int32_t lanes)
        : ringWords_((size_t(reachOn(length, halfWidth)) + 1) * size_t(lanes)),
          words_(ringWords_ * size_t(bandCount)) {}

    Pixel* of(int32_t band) const { return words_.data() + ringWords_ * size_t(band); }

private:
    size_t ringWords_;
    Scratch<Pixel> words_;
};

/// The pass down the columns, band by band. Each band filters the columns of its share and the one after
/// them, where the next band begins; all end at the row where the walk of that further column leaves the
/// picture.
class ColumnPass {
public:
    ColumnPass(const ImageEngine& engine, Pixel* words, int32_t height, int32_t width, int32_t halfWidth,
               int32_t bandCount)
        : engine_(engine),
          words_(words),
          height_(height),
          width_(width),
          halfWidth_(halfWidth),
          share_(ceilingShare(width, bandCount)),
          end_(std::min<int64_t>(width, firstOf(bandCount))),
          rings_(bandCount, height, halfWidth, kTileWords) {}

    /// Filters the share of `band`. The column that it shares with the band before is filtered
    /// by both, so here by this band twice: with the rows of the other first.
    void filterShare(int32_t band) const {
        const int64_t first = firstOf(band), last = std::min(firstOf(band + 1), end_);
        if (first >= last) return;
        if (band > 0) filter(first, 1, rowsOf(band - 1), band);
        for (int64_t column = first; column < last; column += kTileWords)
            filter(column, static_cast<int32_t>(std::min<int64_t>(kTileWords, last - column)), rowsOf(band),
                   band);
    }

    /// Filters the columns of `band` after the last share: past the right edge they are columns from the
    /// left, one row further down. They belong to other bands, which must have ended.
    void filterAfterShares(int32_t band) const {
        for (int64_t column = std::max(firstOf(band), end_); column <= firstOf(band + 1); ++column)
            filter(column, 1, rowsOf(band), 0);
    }

private:
    int64_t firstOf(int32_t band) const { return int64_t{band} * share_; }

    /// Rows of every column of `band`: those of its further column.
    int32_t rowsOf(int32_t band) const {
        const int64_t words = int64_t{height_} * width_ - firstOf(band + 1);
        return words <= 0 ? 0 : static_cast<int32_t>((words + width_ - 1) / width_);
    }

    /// Filters `lanes` columns side by side.
    void filter(int64_t column, int32_t lanes, int32_t rows, int32_t ring) const {
        engine_.throwIfCancelled();
        if (rows > 0)
            boxLine<kTileWords>({words_ + column, width_, rows, lanes}, halfWidth_, rings_.of(ring));
    }

    const ImageEngine& engine_;
    Pixel* words_;
    int32_t height_, width_, halfWidth_;
    int32_t share_;  ///< columns of a band
    int64_t end_;    ///< of the last share
    Rings rings_;
};

}  // namespace

Status boxChromaRows(const ImageEngine& engine, Pixel* words, int32_t height, int32_t width,
                     int32_t halfWidth) {
    const int32_t threadCount = engine.getThreadCount();
    const Rings rings(threadCount, width, halfWidth, 1);
    return runBands(engine, threadCount, [&](int32_t band) {
        const IndexRange rows = lineBand(height, threadCount, band);
        for (int32_t y = rows.first; y < rows.last; ++y) {
            engine.throwIfCancelled();
            boxLine<1>({words + ptrdiff_t(y) * width, 1, width, 1}, halfWidth, rings.of(band));
        }
    });
}

Status boxChromaColumns(const ImageEngine& engine, Pixel* words, int32_t height, int32_t width,
                        int32_t halfWidth) {
    const int32_t threadCount = engine.getThreadCount();
    const ColumnPass pass(engine, words, height, width, halfWidth, threadCount);
    const Status status = runBands(engine, threadCount, [&](int32_t band) { pass.filterShare(band); });
    if (status) return status;
    for (int32_t band = 0; band < threadCount; ++band) pass.filterAfterShares(band);
    return kStatusOk;
}

}  // namespace krl
