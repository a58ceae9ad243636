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

// A layout tells where the samples of a block lie and how blurred ones go back; one of bytes also how
// `count` words' samples are had one after the other, in `room` if need be. `kLanes` samples
// of each word are blurred together, the words are `kPitch` samples apart, and `firstLane` is the
// place of the first in its word.

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

/// A plane of samples and nothing else.
template <class SampleType>
struct PlaneLayout {
    using Sample = SampleType;
    static constexpr int32_t kLanes = 1, kPitch = 1;
    static constexpr int32_t firstLane = 0;

    const Sample* samples(const Sample* words, ptrdiff_t, Sample*) const { return words; }
    void store(Sample* samples, const Sample* blurred, int32_t count) const {
        std::copy_n(blurred, count, samples);
    }
};

/// The size of a block and of the tent on it.
struct Extent {
    int32_t height, width, halfWidth;
};

/// Blurs rows of `block` along themselves into `lines`, where only the blurred lanes are kept.
template <class Arithmetic, class Layout>
void blurRows(const typename Arithmetic::Sample* block, typename Arithmetic::Sample* lines,
              const Extent& extent, const Layout& layout, IndexRange rows) {
    using Sample = typename Arithmetic::Sample;
    const Arithmetic arithmetic(extent.halfWidth);
    for (int32_t y = rows.first; y < rows.last; ++y) {
        const ptrdiff_t start = ptrdiff_t(y) * extent.width;
        const Line<Sample> line{block + start * Layout::kPitch + layout.firstLane, Layout::kPitch,
                                extent.width};
        Sample* to = lines + start * Layout::kLanes;
        tent::Window<Arithmetic, Layout::kLanes> window(arithmetic, line, extent.halfWidth);
        for (int32_t x = 0; x < extent.width; ++x, to += Layout::kLanes)
            window.step(to, line.stepFrom(x, extent.halfWidth));
    }
}

/// Room for a strip of rows, and for the bytes of one channel that it is made of.
constexpr size_t stripBytes(int32_t width) { return 2 * size_t(width) * tent::kStripLanes; }

/// The same for bytes, a strip of rows at a time; `strip` has `stripBytes`.
template <class Arithmetic, class Layout>
void blurTransposedRows(const uint8_t* block, uint8_t* lines, const Extent& extent, const Layout& layout,
                        IndexRange rows, uint8_t* strip) {
    constexpr int32_t kLanes = Layout::kLanes, kRows = tent::stripRows(kLanes);
    constexpr int32_t kColumns = kCacheLine / kLanes;  // whole cache lines of each row are written at once
    const int32_t width = extent.width;
    const Arithmetic arithmetic(extent.halfWidth);
    const Line<uint8_t> line{strip, tent::kStripLanes, width};
    for (int32_t y = rows.first; y < rows.last; y += kRows) {
        const int32_t rowCount = std::min(kRows, rows.last - y);
        const ptrdiff_t start = ptrdiff_t(y) * width;
        const uint8_t* samples = layout.samples(block + start * Layout::kPitch, ptrdiff_t(rowCount) * width,
                                                strip + stripBytes(width) / 2);
        tent::layOnSide<kLanes>(samples, rowCount, width, strip);
        tent::Window<Arithmetic, tent::kStripLanes> window(arithmetic, line, extent.halfWidth);
        for (int32_t x = 0; x < width; x += kColumns) {
            const int32_t end = std::min(x + kColumns, width);
            uint8_t means[kColumns * tent::kStripLanes];
            window.walkOn(means, line, extent.halfWidth, x, end);
            tent::setUpright<kLanes>(means, end - x, lines + (start + x) * kLanes, rowCount, width);
        }
    }
}

/// Asks for memory that will be needed soon.
template <class Sample>
void prefetch(const Sample* first, int32_t count) {
    constexpr int32_t kLineSamples = 64 / sizeof(Sample);
    for (int32_t i = 0; i < count; i += kLineSamples) __builtin_prefetch(first + i);
}

/// Blurs columns of `lines` down themselves into `block`, a tile of adjacent columns at a time. From
/// one row to the next the processor does not foresee what is needed, so it is told.
template <class Arithmetic, class Layout>
void blurColumns(const typename Arithmetic::Sample* lines, typename Arithmetic::Sample* block,
                 const Extent& extent, const Layout& layout, IndexRange columns) {
    using Sample = typename Arithmetic::Sample;
    constexpr int32_t tileColumns = kTileSamples / Layout::kLanes;
    const Arithmetic arithmetic(extent.halfWidth);
    const ptrdiff_t pitch = ptrdiff_t(extent.width) * Layout::kLanes;
    for (int32_t x = columns.first; x < columns.last; x += tileColumns) {
        const int32_t count = std::min(tileColumns, columns.last - x), lanes = count * Layout::kLanes;
        const Line<Sample> line{lines + ptrdiff_t(x) * Layout::kLanes, pitch, extent.height};
        const auto target = [&](int32_t y) {
            return block + (ptrdiff_t(y) * extent.width + x) * Layout::kPitch;
        };
        tent::Window<Arithmetic, kTileSamples> window(arithmetic, line, extent.halfWidth, lanes);
        Sample blurred[kTileSamples] = {};
        for (int32_t y = 0; y < extent.height; ++y) {
            const int32_t rowsLeft = extent.height - 1 - y;
            prefetch(target(y + std::min(kRowsAhead, rowsLeft)), count * Layout::kPitch);
            const int32_t soon = extent.halfWidth + 2 + kRowsAhead;
            if (soon <= rowsLeft) prefetch(line.at(y + soon), lanes);
            window.step(blurred, line.stepFrom(y, extent.halfWidth));
            layout.store(target(y), blurred, count);
        }
    }
}

uint8_t* bytesOf(Pixel* pixels) { return reinterpret_cast<uint8_t*>(pixels); }

}  // namespace

template <class Arithmetic, class Layout>
Status TentBlur::runPasses(typename Arithmetic::Sample* block, int32_t height, int32_t width,
                           int32_t halfWidth, const Layout& layout, typename Arithmetic::Sample* lines) {
    const Extent extent{height, width, halfWidth};
    [[maybe_unused]] auto* strips = lines + size_t(height) * size_t(width) * Layout::kLanes;
    const Status status = runBands(threadCount_, [&](int32_t band) {
        const IndexRange rows = lineBand(height, threadCount_, band);
        if (rows.first >= rows.last) return;
        if constexpr (tent::kInVectors<Arithmetic>)
            blurTransposedRows<Arithmetic>(block, lines, extent, layout, rows,
                                           strips + size_t(band) * stripBytes(width));
        else
            blurRows<Arithmetic>(block, lines, extent, layout, rows);
    });
    if (status) return status;
    return runBands(threadCount_, [&](int32_t band) {
        blurColumns<Arithmetic>(lines, block, extent, layout, lineBand(width, threadCount_, band));
    });
}

template <class Layout>
Status TentBlur::blurLayout(uint8_t* block, int32_t height, int32_t width, int32_t radius,
                            const Layout& layout) {
    const int32_t halfWidth = tent::halfWidth(radius);
    if (halfWidth <= 0 || height <= 0 || width <= 0) return kStatusOk;
    const size_t samples = size_t(height) * size_t(width) * Layout::kLanes;
    const size_t strips = size_t(std::min(threadCount_, height)) * stripBytes(width);
    if (lines_.size() < samples + strips) lines_ = Scratch<uint8_t>(samples + strips);
    if (halfWidth <= tent::kWidestShort)
        return runPasses<tent::ShortBytes>(block, height, width, halfWidth, layout, lines_.data());
    if (halfWidth <= tent::kWidestMiddle)
        return runPasses<tent::MiddleBytes>(block, height, width, halfWidth, layout, lines_.data());
    if (halfWidth <= tent::kWidestNarrow)
        return runPasses<tent::NarrowBytes>(block, height, width, halfWidth, layout, lines_.data());
    return runPasses<tent::WideBytes>(block, height, width, halfWidth, layout, lines_.data());
}

void TentBlur::blurRGBA(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    blurLayout(bytesOf(pixels), height, width, radius, PixelLayout{ChannelMask(ChannelTarget::RGBA)});
}

void TentBlur::blurRGB(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    blurLayout(bytesOf(pixels), height, width, radius, PixelLayout{ChannelMask(ChannelTarget::RGB)});
}

void TentBlur::blurChroma(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    blurLayout(bytesOf(pixels), height, width, radius, PixelLayout{ChannelMask(0x0000FFFFu)});
}

Status TentBlur::blurChannel(Pixel* pixels, int32_t height, int32_t width, int32_t radius, int32_t channel) {
    return blurLayout(bytesOf(pixels), height, width, radius, ChannelLayout{channel});
}

void TentBlur::blurAlpha(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    blurChannel(pixels, height, width, radius, 3);
}

void TentBlur::blurSingle(Pixel* pixels, int32_t height, int32_t width, int32_t radius) {
    blurChannel(pixels, height, width, radius, 0);
}

void TentBlur::blurTarget(Pixel* pixels, int32_t height, int32_t width, int32_t radius,
                          ChannelTarget target) {
    if (target == ChannelTarget::RGBA || target == ChannelTarget::RGB)
        blurLayout(bytesOf(pixels), height, width, radius, PixelLayout{ChannelMask(target)});
    else
        blurAlpha(pixels, height, width, radius);
}

void TentBlur::blurBytes(uint8_t* plane, int32_t height, int32_t width, int32_t radius) {
    blurLayout(plane, height, width, radius, PlaneLayout<uint8_t>{});
}

void TentBlur::blurPlane(int32_t* plane, int32_t height, int32_t width, int32_t radius) {
    threadCount_ = 1;
    const int32_t halfWidth = tent::halfWidth(radius);
    if (halfWidth <= 0 || height <= 0 || width <= 0) return;
    const Scratch<int32_t> lines(size_t(height) * size_t(width));
    runPasses<tent::SignedWords>(plane, height, width, halfWidth, PlaneLayout<int32_t>{}, lines.data());
}

}  // namespace krl
