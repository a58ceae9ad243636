#include "kernels/blur/TentBlur.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "core/Bands.h"
#include "kernels/blur/TentWindow.h"
#include "kernels/blur/TransposedRows.h"

namespace krl {

namespace {

using tent::Line;

constexpr int32_t kCacheLine = 64;

/// Samples that a tile of the column pass is wide: half a memory page, so that going down the rows
/// is not all page walks, and little enough that sums and rows stay in the nearest cache.
constexpr int32_t kTileSamples = 2048;

/// How many rows ahead the column pass asks for memory.
constexpr int32_t kRowsAhead = 4;

// A layout says where the samples of a block are and how blurred ones go where. `kLanes` samples of each word
// are blurred together, words are `kPitch` samples apart, and `firstLane` is the place of the first in its
// word. Layouts of bytes also give the samples of `count` words one after the other, in `room` if need be.
// `store` writes `count` words, blurred ones beside what is left of `old`, which may be where they go.

/// Whole pixels, of which the bytes of `mask` are written.
struct PixelLayout {
    using Sample = uint8_t;
    static constexpr int32_t kLanes = 4, kPitch = 4;
    static constexpr int32_t firstLane = 0;
    ChannelMask mask;

    const uint8_t* samples(const uint8_t* words, ptrdiff_t, uint8_t*) const { return words; }
    void store(const uint8_t* old, const uint8_t* blurred, int32_t count, uint8_t* words) const {
        const auto* fresh = reinterpret_cast<const Pixel*>(blurred);
        auto* target = reinterpret_cast<Pixel*>(words);
        if (mask.isWhole())
            mask.write(target, fresh, count);
        else
            mask.combine(reinterpret_cast<const Pixel*>(old), fresh, count, target);
    }
};

/// One byte of each pixel. It is stored by whole words, which the compiler makes vectors of.
struct ChannelLayout {
    using Sample = uint8_t;
    static constexpr int32_t kLanes = 1, kPitch = 4;
    int32_t firstLane;

    const uint8_t* samples(const uint8_t* words, ptrdiff_t count, uint8_t* room) const {
        tent::gatherChannel(words, firstLane, count, room);
        return room;
    }
    void store(const uint8_t* old, const uint8_t* blurred, int32_t count, uint8_t* words) const {
        const int32_t shift = 8 * firstLane;
        const uint32_t keep = ~(255u << shift);
        for (int32_t i = 0; i < count; ++i) {
            uint32_t word;
            std::memcpy(&word, old + i * 4, 4);
            word = (word & keep) | uint32_t{blurred[i]} << shift;
            std::memcpy(words + i * 4, &word, 4);
        }
    }
};

/// A plane of bytes and nothing else.
struct PlaneLayout {
    using Sample = uint8_t;
    static constexpr int32_t kLanes = 1, kPitch = 1;
    static constexpr int32_t firstLane = 0;

    const Sample* samples(const Sample* words, ptrdiff_t, Sample*) const { return words; }
    void store(const Sample*, const Sample* blurred, int32_t count, Sample* samples) const {
        std::copy_n(blurred, count, samples);
    }
};

/// Asks for memory that will be needed soon.
template <class Sample>
void prefetch(const Sample* first, int32_t count) {
    constexpr int32_t kLineSamples = kCacheLine / sizeof(Sample);
    for (int32_t i = 0; i < count; i += kLineSamples) __builtin_prefetch(first + i);
}

/// Rows that are blurred along themselves: row `y` takes the place of row `y - count`.
template <class Sample>
struct RowRing {
    Sample* rows;
    ptrdiff_t pitch;
    int32_t first, count;

    Sample* row(int32_t y) const { return rows + ptrdiff_t((y - first) % count) * pitch; }
};

/// Columns of such rows from `first` on.
template <class Sample>
struct RingColumns {
    const RowRing<Sample>& rows;
    ptrdiff_t first;

    const Sample* operator()(int32_t y) const { return rows.row(y) + first; }
};

/// Cuts a block into parts that begin at cache lines.
class Room {
public:
    explicit Room(uint8_t* block = nullptr) : at_(reinterpret_cast<uintptr_t>(block)) {}

    template <class Element>
    Element* take(size_t count) {
        const uintptr_t part = at_;
        at_ += (count * sizeof(Element) + kCacheLine - 1) / kCacheLine * kCacheLine;
        return reinterpret_cast<Element*>(part);
    }
    size_t taken() const { return at_; }  ///< from a block at null

private:
    uintptr_t at_;
};

/// Both passes of one blur, from `from` to `to`, which may be the same: rows along themselves, where only the
/// blurred lanes are kept, and columns down these rows.
///
/// A band of rows blurs the rows that its columns will enter and then the next few rows of its columns, so
/// that rows are still in the cache when the columns need them, and few are kept. Bands on several threads
/// blur the rows about their borders twice and must not write what others read. So where `from` and `to` are
/// the same, and where windows are high beside a band, all rows are blurred before the first column.
template <class Arithmetic, class Layout>
class TentPasses {
public:
    using Sample = typename Arithmetic::Sample;
    using Sum = typename Arithmetic::Sum;

    TentPasses(const ImageEngine& engine, const Arithmetic& arithmetic, const Sample* from, Sample* to,
               int32_t height, int32_t width, int32_t halfWidth, const Layout& layout)
        : engine_(engine),
          arithmetic_(arithmetic),
          from_(from),
          to_(to),
          height_(height),
          width_(width),
          halfWidth_(halfWidth),
          layout_(layout),
          bands_(engine.getThreadCount()),
          inStrips_(bands_ == 1 || (from != to && reach() <= height / bands_ / 4)) {}

    /// Runs with working room from `kept`, which grows if it is too small.
    Status run(bool requiresThreads, Scratch<uint8_t>& kept) const {
        Room measure;
        takeRoom(measure);
        if (kept.size() < measure.taken()) kept = Scratch<uint8_t>(measure.taken());
        Room room(kept.data());
        const std::vector<BandRoom> rooms = takeRoom(room);
        const auto runEach = [&](auto&& work) {
            return runBands(engine_, requiresThreads, bands_,
                            [&](int32_t band) { work(band, rooms[size_t(band)]); });
        };
        if (inStrips_)
            return runEach(
                [&](int32_t band, const BandRoom& own) { blurStrips(lineBand(height_, bands_, band), own); });
        const Status status = runEach([&](int32_t band, const BandRoom& own) {
            const IndexRange rows = lineBand(height_, bands_, band);
            if (rows.first < rows.last) blurRows(rows, own);
        });
        if (status) return status;
        return runEach([&](int32_t band, const BandRoom& own) {
            const IndexRange columns = lineBand(width_, bands_, band);
            if (columns.first >= columns.last) return;
            beginColumns(columns, 0, own);
            walkDown(columns, {0, height_}, own);
        });
    }

private:
    /// Rows that are transposed together, and columns walked down at a time.
    static constexpr int32_t kStripRows = tent::transposedRows(Layout::kLanes);

    /// A band's working room. Bands of columns share all but the last.
    struct BandRoom {
        RowRing<Sample> rows;
        Sum *sums, *slopes;   ///< of the columns
        uint8_t* transposed;  ///< for rows that are transposed, and for the bytes of one channel they are of
    };

    int32_t reach() const { return std::min(halfWidth_, height_) + 2; }
    ptrdiff_t rowSamples() const { return ptrdiff_t(width_) * Layout::kLanes; }
    /// The first row that windows on `row` need.
    int32_t firstAbove(int32_t row) const { return std::max(row - halfWidth_, 0); }

    std::vector<BandRoom> takeRoom(Room& room) const {
        std::vector<BandRoom> rooms(static_cast<size_t>(bands_));
        // A strip's windows begin up to `reach` rows above and end so far below; the last rows that are
        // transposed for them may go as far again as a strip.
        const int64_t needed = int64_t(kStripRows) * (2 * int64_t(reach()) / kStripRows + 3);
        const auto ringRows = static_cast<int32_t>(inStrips_ ? std::min<int64_t>(needed, height_) : height_);
        for (int32_t band = 0; band < bands_; ++band) {
            BandRoom& own = rooms[static_cast<size_t>(band)];
            if (inStrips_ || band == 0) {
                const int32_t first = inStrips_ ? firstAbove(lineBand(height_, bands_, band).first) : 0;
                own.rows = {room.take<Sample>(size_t(ringRows) * size_t(rowSamples())), rowSamples(), first,
                            ringRows};
                own.sums = room.take<Sum>(size_t(rowSamples()));
                own.slopes = room.take<Sum>(size_t(rowSamples()));
            } else {
                own = rooms[0];
            }
            if (band < height_) own.transposed = room.take<uint8_t>(2 * transposedHalf());
        }
        return rooms;
    }
    size_t transposedHalf() const { return size_t(width_) * tent::kTransposedLanes; }

    /// Blurs rows along themselves into the band's ring.
    void blurRows(IndexRange rows, const BandRoom& own) const {
        for (int32_t y = rows.first; y < rows.last; y += kStripRows) {
            engine_.throwIfCancelled();
            const int32_t count = std::min(kStripRows, rows.last - y);
            if constexpr (tent::kInVectors<Arithmetic>)
                blurTransposedRows(y, count, own);
            else
                for (int32_t i = 0; i < count; ++i) blurRow(y + i, own.rows.row(y + i));
        }
    }

    void blurRow(int32_t y, Sample* to) const {
        const Line<Sample> line{from_ + ptrdiff_t(y) * width_ * Layout::kPitch + layout_.firstLane,
                                Layout::kPitch, width_};
        tent::Window<Arithmetic, Layout::kLanes> window(arithmetic_, line, halfWidth_);
        for (int32_t x = 0; x < width_; ++x, to += Layout::kLanes)
            window.step(to, line.stepFrom(x, halfWidth_));
    }

    /// Blurs `count` rows of bytes side by side, of which the ring has room for all before its end.
    void blurTransposedRows(int32_t y, int32_t count, const BandRoom& own) const {
        constexpr int32_t kLanes = Layout::kLanes;
        constexpr int32_t kColumns =
            kCacheLine / kLanes;  // whole cache lines of each row are written at once
        const Line<uint8_t> line{own.transposed, tent::kTransposedLanes, width_};
        const uint8_t* samples =
            layout_.samples(from_ + ptrdiff_t(y) * width_ * Layout::kPitch, ptrdiff_t(count) * width_,
                            own.transposed + transposedHalf());
        tent::transpose<kLanes>(samples, count, width_, own.transposed);
        tent::Window<Arithmetic, tent::kTransposedLanes> window(arithmetic_, line, halfWidth_);
        uint8_t* to = own.rows.row(y);
        for (int32_t x = 0; x < width_; x += kColumns) {
            const int32_t end = std::min(x + kColumns, width_);
            uint8_t means[kColumns * tent::kTransposedLanes];
            window.walkOn(means, line, halfWidth_, x, end);
            tent::transposeBack<kLanes>(means, end - x, to + x * kLanes, count, width_);
        }
    }

    /// Begins the columns' windows at row `y`.
    void beginColumns(IndexRange columns, int32_t y, const BandRoom& own) const {
        const ptrdiff_t first = ptrdiff_t(columns.first) * Layout::kLanes;
        tent::beginWindows(arithmetic_,
                           tent::WindowSums<Sum>{own.sums + first, own.slopes + first,
                                                 (columns.last - columns.first) * Layout::kLanes},
                           y, height_, halfWidth_, RingColumns<Sample>{own.rows, first});
    }

    /// Walks columns down `rows`, in tiles of adjacent ones row by row. The processor does not foresee which
    /// memory the next row needs, so it is prefetched.
    void walkDown(IndexRange columns, IndexRange rows, const BandRoom& own) const {
        constexpr int32_t kTileColumns = kTileSamples / Layout::kLanes;
        for (int32_t x = columns.first; x < columns.last; x += kTileColumns) {
            const int32_t count = std::min(kTileColumns, columns.last - x), lanes = count * Layout::kLanes;
            const ptrdiff_t first = ptrdiff_t(x) * Layout::kLanes;
            const auto line = [&](int32_t y) { return own.rows.row(y) + first; };
            const auto word = [&](int32_t y) { return (ptrdiff_t(y) * width_ + x) * Layout::kPitch; };
            Sample blurred[kTileSamples] = {};
            for (int32_t y = rows.first; y < rows.last; ++y) {
                engine_.throwIfCancelled();
                const int32_t rowsLeft = rows.last - 1 - y;
                prefetch(to_ + word(y + std::min(kRowsAhead, rowsLeft)), count * Layout::kPitch);
                const int32_t soon = halfWidth_ + 2 + kRowsAhead;
                if (soon <= rowsLeft) prefetch(line(y + soon), lanes);
                const tent::Step<Sample> step{line(std::min(y + halfWidth_ + 2, height_ - 1)),
                                              line(std::min(y + 1, height_ - 1)), line(firstAbove(y))};
                if constexpr (tent::kInVectors<Arithmetic>)
                    tent::stepManyLanes(arithmetic_, own.sums + first, own.slopes + first, blurred, step,
                                        lanes);
                else
                    tent::stepLanes(arithmetic_, own.sums + first, own.slopes + first, blurred, step, lanes);
                layout_.store(from_ + word(y), blurred, count, to_ + word(y));
            }
        }
    }

    /// Blurs rows and columns in turns.
    void blurStrips(IndexRange rows, const BandRoom& own) const {
        int32_t blurred = own.rows.first;
        for (int32_t y = rows.first; y < rows.last; y += kStripRows) {
            const int32_t end = std::min(y + kStripRows, rows.last);
            const auto needed = static_cast<int32_t>(std::min<int64_t>(end + int64_t{reach()}, height_));
            for (; blurred < needed; blurred += kStripRows)
                blurRows({blurred, std::min(blurred + kStripRows, height_)}, own);
            if (y == rows.first) beginColumns({0, width_}, y, own);
            walkDown({0, width_}, {y, end}, own);
        }
    }

    const ImageEngine& engine_;
    Arithmetic arithmetic_;
    const Sample* from_;
    Sample* to_;
    int32_t height_, width_, halfWidth_;
    Layout layout_;
    int32_t bands_;
    bool inStrips_;
};

uint8_t* bytesOf(Pixel* pixels) { return reinterpret_cast<uint8_t*>(pixels); }
const uint8_t* bytesOf(const Pixel* pixels) { return reinterpret_cast<const uint8_t*>(pixels); }

}  // namespace

template <class Layout>
Status TentBlur::blurLayout(const uint8_t* from, uint8_t* to, int32_t height, int32_t width, int32_t radius,
                            const Layout& layout) {
    const int32_t halfWidth = tent::halfWidth(radius);
    if (halfWidth <= 0 || height <= 0 || width <= 0) return kStatusOk;
    const auto blurBy = [&](const auto& arithmetic) {
        return TentPasses(engine_, arithmetic, from, to, height, width, halfWidth, layout)
            .run(requiresThreads_, lines_);
    };
    if (halfWidth <= tent::kWidestShort) return blurBy(tent::ShortBytes(halfWidth));
    if (halfWidth <= tent::kWidestMiddle) return blurBy(tent::MiddleBytes(halfWidth));
    if (halfWidth <= tent::kWidestNarrow) return blurBy(tent::NarrowBytes(halfWidth));
    return blurBy(tent::WideBytes(halfWidth));
}

Status TentBlur::blurPixels(const Pixel* from, Pixel* to, int32_t height, int32_t width, int32_t radius,
                            ChannelMask mask) {
    return blurLayout(bytesOf(from), bytesOf(to), height, width, radius, PixelLayout{mask});
}

Status TentBlur::blurBeside(const Pixel* from, Pixel* to, int32_t height, int32_t width, int32_t radius,
                            ChannelTarget target) {
    if (target == ChannelTarget::RGBA || target == ChannelTarget::RGB)
        return blurPixels(from, to, height, width, radius, ChannelMask(target));
    return blurLayout(bytesOf(from), bytesOf(to), height, width, radius, ChannelLayout{3});
}

Status TentBlur::blurRGBA(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    return blurTarget(pixels, height, width, radius, ChannelTarget::RGBA);
}

Status TentBlur::blurRGB(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    return blurTarget(pixels, height, width, radius, ChannelTarget::RGB);
}

Status TentBlur::blurChroma(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    return blurPixels(pixels, pixels, height, width, radius, ChannelMask(0x0000FFFFu));
}

Status TentBlur::blurChannel(Pixel* pixels, int32_t height, int32_t width, int32_t radius, int32_t channel) {
    return blurLayout(bytesOf(pixels), bytesOf(pixels), height, width, radius, ChannelLayout{channel});
}

Status TentBlur::blurAlpha(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    return blurTarget(pixels, height, width, radius, ChannelTarget::Alpha);
}

Status TentBlur::blurSingle(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    return blurChannel(pixels, height, width, radius, 0);
}

Status TentBlur::blurTarget(Pixel* pixels, int32_t height, int32_t width, int32_t radius,
                            ChannelTarget target) {
    return blurBeside(pixels, pixels, height, width, radius, target);
}

Status TentBlur::blurInto(const ScratchImage& copy, const ImageBuffer& image, int32_t radius,
                          ChannelTarget target) {
    const bool changes = tent::halfWidth(radius) > 0 && image.height > 0 && image.width > 0;
    const Status status = blurBeside(image.row(0), copy.row(0), image.height, image.width, radius, target);
    const size_t blurred =
        changes && !status ? size_t(image.height) * size_t(image.width) * sizeof(Pixel) : 0;
    if (blurred < image.bytes())
        std::memcpy(copy.view().pixels + blurred, image.pixels + blurred, image.bytes() - blurred);
    return status;
}

Status TentBlur::blurBytes(uint8_t* plane, int32_t height, int32_t width, int32_t radius) {
    return blurLayout(plane, plane, height, width, radius, PlaneLayout{});
}

}  // namespace krl
