#include "kernels/blur/TentBlur.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "core/Bands.h"
#include "core/ChannelMask.h"
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

// A layout says where the samples of a block are and how blurred ones go back. `kLanes` samples of each word
// are blurred together, words are `kPitch` samples apart, and `firstLane` is the place of the first in its
// word. Layouts of bytes also give the samples of `count` words one after the other, in `room` if need be.

/// Whole pixels, of which the bytes of `mask` are written.
struct PixelLayout {
    using Sample = uint8_t;
    static constexpr int32_t kLanes = 4, kPitch = 4;
    static constexpr int32_t firstLane = 0;
    ChannelMask mask;

    const uint8_t* samples(const uint8_t* words, ptrdiff_t, uint8_t*) const { return words; }
    void store(uint8_t* words, const uint8_t* blurred, int32_t count) const {
        mask.write(reinterpret_cast<Pixel*>(words), reinterpret_cast<const Pixel*>(blurred), count);
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
    void store(uint8_t* words, const uint8_t* blurred, int32_t count) const {
        const int32_t shift = 8 * firstLane;
        const uint32_t keep = ~(255u << shift);
        for (int32_t i = 0; i < count; ++i) {
            uint32_t word;
            std::memcpy(&word, words + i * 4, 4);
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
    void store(Sample* samples, const Sample* blurred, int32_t count) const {
        std::copy_n(blurred, count, samples);
    }
};

/// A band's room for rows that are transposed, and for the bytes of one channel that they are made of.
constexpr size_t transposedBytes(int32_t width) { return 2 * size_t(width) * tent::kTransposedLanes; }

/// Asks for memory that will be needed soon.
template <class Sample>
void prefetch(const Sample* first, int32_t count) {
    constexpr int32_t kLineSamples = kCacheLine / sizeof(Sample);
    for (int32_t i = 0; i < count; i += kLineSamples) __builtin_prefetch(first + i);
}

/// Both passes of one blur: rows of `block` along themselves into `lines`, where only the blurred lanes are
/// kept, and columns of `lines` down themselves back into `block`.
template <class Arithmetic, class Layout>
class TentPasses {
public:
    using Sample = typename Arithmetic::Sample;

    TentPasses(const ImageEngine& engine, const Arithmetic& arithmetic, Sample* block, int32_t height,
               int32_t width, int32_t halfWidth, const Layout& layout, Sample* lines)
        : engine_(engine),
          arithmetic_(arithmetic),
          block_(block),
          lines_(lines),
          height_(height),
          width_(width),
          halfWidth_(halfWidth),
          layout_(layout) {}

    Status run(int32_t threadCount, bool requiresThreads) const {
        const Status status = runBands(engine_, requiresThreads, threadCount, [&](int32_t band) {
            const IndexRange rows = lineBand(height_, threadCount, band);
            if (rows.first >= rows.last) return;
            if constexpr (tent::kInVectors<Arithmetic>)
                blurTransposedRows(rows, lines_ + linesSize() + size_t(band) * transposedBytes(width_));
            else
                blurRows(rows);
        });
        if (status) return status;
        return runBands(engine_, requiresThreads, threadCount,
                        [&](int32_t band) { blurColumns(lineBand(width_, threadCount, band)); });
    }

private:
    size_t linesSize() const { return size_t(height_) * size_t(width_) * Layout::kLanes; }

    void blurRows(IndexRange rows) const {
        for (int32_t y = rows.first; y < rows.last; ++y) {
            engine_.throwIfCancelled();
            const ptrdiff_t start = ptrdiff_t(y) * width_;
            const Line<Sample> line{block_ + start * Layout::kPitch + layout_.firstLane, Layout::kPitch,
                                    width_};
            Sample* to = lines_ + start * Layout::kLanes;
            tent::Window<Arithmetic, Layout::kLanes> window(arithmetic_, line, halfWidth_);
            for (int32_t x = 0; x < width_; ++x, to += Layout::kLanes)
                window.step(to, line.stepFrom(x, halfWidth_));
        }
    }

    /// The same for bytes, as many rows side by side as there are lanes; `room` has `transposedBytes`.
    void blurTransposedRows(IndexRange rows, uint8_t* room) const {
        constexpr int32_t kLanes = Layout::kLanes, kRows = tent::transposedRows(kLanes);
        constexpr int32_t kColumns =
            kCacheLine / kLanes;  // whole cache lines of each row are written at once
        const Line<uint8_t> line{room, tent::kTransposedLanes, width_};
        for (int32_t y = rows.first; y < rows.last; y += kRows) {
            engine_.throwIfCancelled();
            const int32_t rowCount = std::min(kRows, rows.last - y);
            const ptrdiff_t start = ptrdiff_t(y) * width_;
            const uint8_t* samples =
                layout_.samples(block_ + start * Layout::kPitch, ptrdiff_t(rowCount) * width_,
                                room + transposedBytes(width_) / 2);
            tent::transpose<kLanes>(samples, rowCount, width_, room);
            tent::Window<Arithmetic, tent::kTransposedLanes> window(arithmetic_, line, halfWidth_);
            for (int32_t x = 0; x < width_; x += kColumns) {
                const int32_t end = std::min(x + kColumns, width_);
                uint8_t means[kColumns * tent::kTransposedLanes];
                window.walkOn(means, line, halfWidth_, x, end);
                tent::transposeBack<kLanes>(means, end - x, lines_ + (start + x) * kLanes, rowCount, width_);
            }
        }
    }

    /// Walks a tile of adjacent columns row by row. The processor does not foresee which memory the next row
    /// needs, so it is prefetched.
    void blurColumns(IndexRange columns) const {
        constexpr int32_t kTileColumns = kTileSamples / Layout::kLanes;
        const ptrdiff_t pitch = ptrdiff_t(width_) * Layout::kLanes;
        for (int32_t x = columns.first; x < columns.last; x += kTileColumns) {
            const int32_t count = std::min(kTileColumns, columns.last - x), lanes = count * Layout::kLanes;
            const Line<Sample> line{lines_ + ptrdiff_t(x) * Layout::kLanes, pitch, height_};
            const auto target = [&](int32_t y) {
                return block_ + (ptrdiff_t(y) * width_ + x) * Layout::kPitch;
            };
            tent::Window<Arithmetic, kTileSamples> window(arithmetic_, line, halfWidth_, lanes);
            Sample blurred[kTileSamples] = {};
            for (int32_t y = 0; y < height_; ++y) {
                engine_.throwIfCancelled();
                const int32_t rowsLeft = height_ - 1 - y;
                prefetch(target(y + std::min(kRowsAhead, rowsLeft)), count * Layout::kPitch);
                const int32_t soon = halfWidth_ + 2 + kRowsAhead;
                if (soon <= rowsLeft) prefetch(line.at(y + soon), lanes);
                window.step(blurred, line.stepFrom(y, halfWidth_));
                layout_.store(target(y), blurred, count);
            }
        }
    }

    const ImageEngine& engine_;
    Arithmetic arithmetic_;
    Sample *block_, *lines_;
    int32_t height_, width_, halfWidth_;
    Layout layout_;
};

uint8_t* bytesOf(Pixel* pixels) { return reinterpret_cast<uint8_t*>(pixels); }

}  // namespace

template <class Layout>
Status TentBlur::blurLayout(uint8_t* block, int32_t height, int32_t width, int32_t radius,
                            const Layout& layout) {
    const int32_t halfWidth = tent::halfWidth(radius);
    if (halfWidth <= 0 || height <= 0 || width <= 0) return kStatusOk;
    const size_t samples = size_t(height) * size_t(width) * Layout::kLanes;
    const size_t room = size_t(std::min(engine_.getThreadCount(), height)) * transposedBytes(width);
    if (lines_.size() < samples + room) lines_ = Scratch<uint8_t>(samples + room);
    const auto blurBy = [&](const auto& arithmetic) {
        return TentPasses(engine_, arithmetic, block, height, width, halfWidth, layout, lines_.data())
            .run(engine_.getThreadCount(), requiresThreads_);
    };
    if (halfWidth <= tent::kWidestShort) return blurBy(tent::ShortBytes(halfWidth));
    if (halfWidth <= tent::kWidestMiddle) return blurBy(tent::MiddleBytes(halfWidth));
    if (halfWidth <= tent::kWidestNarrow) return blurBy(tent::NarrowBytes(halfWidth));
    return blurBy(tent::WideBytes(halfWidth));
}

Status TentBlur::blurRGBA(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    return blurLayout(bytesOf(pixels), height, width, radius, PixelLayout{ChannelMask(ChannelTarget::RGBA)});
}

Status TentBlur::blurRGB(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    return blurLayout(bytesOf(pixels), height, width, radius, PixelLayout{ChannelMask(ChannelTarget::RGB)});
}

Status TentBlur::blurChroma(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    return blurLayout(bytesOf(pixels), height, width, radius, PixelLayout{ChannelMask(0x0000FFFFu)});
}

Status TentBlur::blurChannel(Pixel* pixels, int32_t height, int32_t width, int32_t radius, int32_t channel) {
    return blurLayout(bytesOf(pixels), height, width, radius, ChannelLayout{channel});
}

Status TentBlur::blurAlpha(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    return blurChannel(pixels, height, width, radius, 3);
}

Status TentBlur::blurSingle(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    return blurChannel(pixels, height, width, radius, 0);
}

Status TentBlur::blurTarget(Pixel* pixels, int32_t height, int32_t width, int32_t radius,
                            ChannelTarget target) {
    if (target == ChannelTarget::RGBA || target == ChannelTarget::RGB)
        return blurLayout(bytesOf(pixels), height, width, radius, PixelLayout{ChannelMask(target)});
    return blurAlpha(pixels, height, width, radius);
}

Status TentBlur::blurBytes(uint8_t* plane, int32_t height, int32_t width, int32_t radius) {
    return blurLayout(plane, height, width, radius, PlaneLayout{});
}

}  // namespace krl
