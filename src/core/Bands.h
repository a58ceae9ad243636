#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>

#include "core/Numbers.h"
#include "core/SpanTaker.h"
#include "krlimage/engine.h"

/// Distribution of an effect's work over threads: the image is divided into `threadCount` bands. The last
/// band runs on the calling thread and every other one on its own thread. The call returns when all have
/// finished, so the end of a pass is a barrier. An effect supplies only the work for a pixel, row or column.
/// Between rows or small parts of a band the pass ends with `Cancelled` if the engine is cancelled.
namespace krl {

/// A half-open range of pixel, row or column numbers; empty if `last <= first`.
struct IndexRange {
    int32_t first = 0;
    int32_t last = 0;
};

/// Runs `work(0)` to `work(bandCount - 1)` in parallel. If a task or thread cannot be created, the calling
/// thread runs that band too; where the engine requires threads the result is `kStatusNoTaskMemory` or
/// `kStatusThreadFailed` instead: the bands before it have then finished, the bands after it have not run.
/// An exception from a band is rethrown once all have finished.
Status runBands(const ImageEngine& engine, int32_t bandCount, const std::function<void(int32_t)>& work);
/// The same for work whose own definition says whether it requires threads.
Status runBands(const ImageEngine& engine, bool requiresThreads, int32_t bandCount,
                const std::function<void(int32_t)>& work);

/// For a part of an effect that is left out, by definition without a word, if a thread that it requires
/// cannot start.
inline void leftOutWithoutThreads(Status) {}

/// The pixels of band `band`, numbered through the whole block regardless of rows.
IndexRange pixelBand(const ImageBuffer& image, int32_t threadCount, int32_t band);
/// The same of the engine's image; without short bands the last one ends with the last pixel of all rows.
IndexRange pixelBand(const ImageEngine& engine, int32_t bandCount, int32_t band);
/// The rows, or columns, of band `band` out of `lineCount`.
IndexRange lineBand(int32_t lineCount, int32_t threadCount, int32_t band);

/// What a pass does to `count` pixels beside those at the same places in another image.
using SpanPairWork = std::function<void(Pixel* first, size_t count, const Pixel* beside)>;

/// Calls `work` for each band's pixels, piece by piece, after the state tests. `curves` says what `work` does
/// if it is nothing else.
Status runSpans(const ImageEngine& engine, const SpanWork& work, const ChannelCurves* curves = nullptr);
/// The same with the pixels at the same positions in `other`, which is one contiguous span and never read
/// past its end; the last bands would exceed it if only the loaded rows are padded. The caller checks the
/// sizes.
Status runSpansBeside(const ImageEngine& engine, const SecondImage& other, const SpanPairWork& work);

/// The same on the calling thread alone, for methods whose definition starts no threads.
Status runSpansHere(const ImageEngine& engine, const SpanWork& work, const ChannelCurves* curves = nullptr);
/// The same row by row, without what is between the rows.
Status runRowsHere(const ImageEngine& engine, const SpanWork& work);

/// Calls `work(first, last)` as `runSpans`.
template <class Work>
Status forEachSpan(const ImageEngine& engine, Work&& work) {
    return runSpans(engine, std::ref(work));
}

/// Calls `perPixel(Pixel&)` for every pixel, after the state tests.
template <class PerPixel>
Status forEachPixel(const ImageEngine& engine, PerPixel&& perPixel) {
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        for (Pixel* p = first; p != last; ++p) perPixel(*p);
    });
}

/// Calls `work(first, count, beside)` as `runSpansBeside`.
template <class Work>
Status forEachSpanBeside(const ImageEngine& engine, const SecondImage& other, Work&& work) {
    return runSpansBeside(engine, other, std::ref(work));
}

/// Calls `perPair(Pixel&, const Pixel&)` for every pixel that has a counterpart at the same position in
/// `other`.
template <class PerPair>
Status forEachPixelPair(const ImageEngine& engine, const SecondImage& other, PerPair&& perPair) {
    return forEachSpanBeside(engine, other, [&](Pixel* first, size_t count, const Pixel* beside) {
        for (Pixel* p = first; p != first + count; ++p) perPair(*p, *beside++);
    });
}

/// Calls `work(IndexRange)` with each band's share of `lineCount` rows or columns.
template <class Work>
Status forEachLineRange(const ImageEngine& engine, int32_t lineCount, Work&& work) {
    return runBands(engine, engine.getThreadCount(), [&](int32_t band) {
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
        for (int32_t y = rows.first; y < rows.last; ++y) {
            engine.throwIfCancelled();
            perRow(engine.buffer()->row(y), y);
        }
    });
}

}  // namespace krl
