#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <utility>

#include "core/Numbers.h"
#include "krlimage/engine.h"

/// How an effect's work is spread: the image is cut into `threadCount` bands, every band but the
/// last gets a thread of its own, the last runs on the caller, and the call returns when all have
/// ended. The end of a pass is the barrier before the next. An effect gives only what one pixel,
/// row or column needs.
namespace krl {

/// A half-open run of pixel, row or column numbers; empty where `last <= first`.
struct IndexRange {
    int32_t first = 0;
    int32_t last = 0;
};

/// Runs `work(0)` to `work(bandCount - 1)` at once. `kStatusNoTaskMemory` or `kStatusThreadFailed`
/// when a band cannot be had: bands before it have then run to their end, those after it have not
/// run. What a band throws is thrown on to the caller once all have ended.
Status runBands(int32_t bandCount, const std::function<void(int32_t)>& work);

/// The pixels of band `band`, numbered through the block without regard to rows.
IndexRange pixelBand(const ImageBuffer& image, int32_t threadCount, int32_t band);
/// The rows, or columns, of band `band` out of `lineCount`.
IndexRange lineBand(int32_t lineCount, int32_t threadCount, int32_t band);

/// Calls `work(first, last)` with the two ends of each band's run of pixels, after the state tests.
template <class Work>
Status forEachSpan(const ImageEngine& engine, Work&& work) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    return runBands(engine.getThreadCount(), [&](int32_t band) {
        const IndexRange run = pixelBand(image, engine.getThreadCount(), band);
        Pixel* pixels = reinterpret_cast<Pixel*>(image.pixels);
        if (run.first < run.last) work(pixels + run.first, pixels + run.last);
    });
}

/// Calls `perPixel(Pixel&)` for every pixel, after the state tests.
template <class PerPixel>
Status forEachPixel(const ImageEngine& engine, PerPixel&& perPixel) {
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        for (Pixel* p = first; p != last; ++p) perPixel(*p);
    });
}

/// Calls `work(Pixel* first, size_t count, const Pixel* beside)` for each band's run of pixels and those at
/// the same places of `other`, which is walked as one contiguous run and never past its end: where the
/// loaded rows alone are padded, the last bands would reach a little further. The sizes are the caller's to
/// test.
template <class Work>
Status forEachSpanBeside(const ImageEngine& engine, const SecondImage& other, Work&& work) {
    const std::span<const Pixel> block = other.block();
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        const ptrdiff_t start = first - engine.buffer()->row(0);
        const ptrdiff_t count = std::min(last - first, static_cast<ptrdiff_t>(block.size()) - start);
        if (count > 0) work(first, static_cast<size_t>(count), block.data() + start);
    });
}

/// Calls `perPair(Pixel&, const Pixel&)` for every pixel beside the one at the same place of `other`, as
/// far as there is one.
template <class PerPair>
Status forEachPixelPair(const ImageEngine& engine, const SecondImage& other, PerPair&& perPair) {
    return forEachSpanBeside(engine, other, [&](Pixel* first, size_t count, const Pixel* beside) {
        for (Pixel* p = first; p != first + count; ++p) perPair(*p, *beside++);
    });
}

/// Calls `work(IndexRange)` with each band's share of `lineCount` rows or columns.
template <class Work>
Status forEachLineRange(const ImageEngine& engine, int32_t lineCount, Work&& work) {
    return runBands(engine.getThreadCount(), [&](int32_t band) {
        const IndexRange lines = lineBand(lineCount, engine.getThreadCount(), band);
        if (lines.first < lines.last) work(lines);
    });
}

/// Calls `work(IndexRange rows)` once for each band of rows, after the state tests.
template <class Work>
Status forEachRowRange(const ImageEngine& engine, Work&& work) {
    if (Status state = engine.imageStatus()) return state;
    return forEachLineRange(engine, engine.buffer()->height, std::forward<Work>(work));
}

/// Calls `work(IndexRange columns)` once for each band of columns, after the state tests.
template <class Work>
Status forEachColumnRange(const ImageEngine& engine, Work&& work) {
    if (Status state = engine.imageStatus()) return state;
    return forEachLineRange(engine, engine.buffer()->width, std::forward<Work>(work));
}

/// Calls `perRow(Pixel* row, int32_t y)` for every row, banded by rows, after the state tests.
template <class PerRow>
Status forEachRow(const ImageEngine& engine, PerRow&& perRow) {
    return forEachRowRange(engine, [&](IndexRange rows) {
        for (int32_t y = rows.first; y < rows.last; ++y) perRow(engine.buffer()->row(y), y);
    });
}

/// Columns of a tile: adjacent columns are walked together down the rows, so that a pass along
/// columns still reads memory in rows and its running sums sit in small arrays.
inline constexpr int32_t kTileColumns = 16;

/// Calls `perTile(IndexRange columns)` for tiles of at most `kTileColumns` columns, banded by
/// columns, after the state tests.
template <class PerTile>
Status forEachColumnTile(const ImageEngine& engine, PerTile&& perTile) {
    return forEachColumnRange(engine, [&](IndexRange columns) {
        for (int32_t x = columns.first; x < columns.last; x += kTileColumns)
            perTile(IndexRange{x, columns.last - x < kTileColumns ? columns.last : x + kTileColumns});
    });
}

}  // namespace krl
