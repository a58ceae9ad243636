#include "core/Bands.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <new>
#include <span>
#include <vector>

#include "core/ChannelOrder.h"
#include "core/Faults.h"
#include "core/Thread.h"

namespace krl {

namespace {

/// Pixels of a band between two tests for cancellation; several images' pieces fit into a processor's cache.
constexpr int32_t kPiecePixels = 1 << 16;
/// Pixels of a piece in BGRA at a time.
constexpr size_t kReorderedPixels = 1 << 11;

/// One band on a thread of its own.
class BandTask final : public ThreadTask {
public:
    BandTask(int32_t band, const std::function<void(int32_t)>& work) : band_(band), work_(&work) {}

    void run() noexcept override {
        try {
            (*work_)(band_);
        } catch (...) {
            failure_ = std::current_exception();
        }
    }
    void rethrowFailure() const {
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    int32_t band_;
    const std::function<void(int32_t)>* work_;
    std::exception_ptr failure_;
};

/// The bands that run on threads of their own; none outlives this object.
class Workers {
public:
    /// Makes room for `count` threads, so that starting one allocates nothing here.
    explicit Workers(size_t count) {
        try {
            tasks_.reserve(count);
            threads_.reserve(count);
            hasRoom_ = true;
        } catch (const std::bad_alloc&) {
        }
    }

    Status start(int32_t band, const std::function<void(int32_t)>& work) {
        if (!hasRoom_) return kStatusNoTaskMemory;
        BandTask& task = tasks_.emplace_back(band, work);
        if (!Faults::grant(faults().threads)) return kStatusThreadFailed;
        try {
            return threads_.start(task) ? kStatusOk : kStatusThreadFailed;
        } catch (const std::bad_alloc&) {
            return kStatusNoTaskMemory;
        }
    }

    void join() { threads_.join(); }

    void rethrowFailure() const {
        for (const BandTask& task : tasks_) task.rethrowFailure();
    }

private:
    bool hasRoom_ = false;
    std::vector<BandTask> tasks_;
    ThreadGroup threads_;  ///< ends before its tasks go
};

/// Calls `work` for the pixels of `run`, piece by piece.
void runPieces(const ImageEngine& engine, IndexRange run, const SpanWork& work) {
    Pixel* const pixels = engine.buffer()->row(0);
    while (run.first < run.last) {
        engine.throwIfCancelled();
        const int32_t end = run.first + std::min(run.last - run.first, kPiecePixels);
        work(pixels + run.first, pixels + end);
        run.first = end;
    }
}

}  // namespace

int32_t ceilingShare(int32_t count, int32_t parts) {
    const auto share = static_cast<float>(static_cast<double>(count) / parts);
    return truncate(std::ceil(share));
}

IndexRange lineBand(int32_t lineCount, int32_t threadCount, int32_t band) {
    const int64_t share = ceilingShare(lineCount, threadCount);
    const auto limited = [&](int64_t line) {
        return static_cast<int32_t>(line < lineCount ? line : lineCount);
    };
    return {limited(share * band), limited(share * (band + 1))};
}

IndexRange pixelBand(const ImageBuffer& image, int32_t threadCount, int32_t band) {
    const int64_t share = ceilingShare(wrapMultiply(image.width, image.height), threadCount);
    const int64_t total = (image.end - image.pixels) / ptrdiff_t{sizeof(Pixel)};
    const auto limited = [&](int64_t pixel) { return static_cast<int32_t>(pixel < total ? pixel : total); };
    return {limited(share * band), limited(share * (band + 1))};
}

IndexRange pixelBand(const ImageEngine& engine, int32_t bandCount, int32_t band) {
    const ImageBuffer& image = *engine.buffer();
    IndexRange run = pixelBand(image, bandCount, band);
    if (engine.keepsShortBands() || band + 1 < bandCount) return run;
    const auto blockPixels = static_cast<int32_t>((image.end - image.pixels) / ptrdiff_t{sizeof(Pixel)});
    run.last = std::max(run.last, std::min(blockPixels, wrapMultiply(image.width, image.height)));
    return run;
}

Status runBands(const ImageEngine& engine, bool requiresThreads, int32_t bandCount,
                const std::function<void(int32_t)>& work) {
    engine.throwIfCancelled();
    const int32_t last = bandCount - 1;
    Workers workers(static_cast<size_t>(last));
    for (int32_t band = 0; band < bandCount; ++band) {
        Status missing = Faults::grant(faults().tasks) ? kStatusOk : kStatusNoTaskMemory;
        if (!missing && band < last) {
            missing = workers.start(band, work);
            if (!missing) continue;
        }
        if (missing && requiresThreads) return missing;
        work(band);
    }
    workers.join();
    workers.rethrowFailure();
    return kStatusOk;
}

Status runBands(const ImageEngine& engine, int32_t bandCount, const std::function<void(int32_t)>& work) {
    return runBands(engine, engine.requiresThreads(), bandCount, work);
}

Status runSpans(const ImageEngine& engine, const SpanWork& work, const ChannelCurves* curves) {
    if (Status state = engine.imageStatus()) return state;
    if (SpanTaker* const taker = engine.spanTaker()) return taker->take(work, curves);
    return runBands(engine, engine.getThreadCount(), [&](int32_t band) {
        runPieces(engine, pixelBand(engine, engine.getThreadCount(), band), work);
    });
}

Status runSpansHere(const ImageEngine& engine, const SpanWork& work, const ChannelCurves* curves) {
    if (Status state = engine.imageStatus()) return state;
    if (SpanTaker* const taker = engine.spanTaker()) return taker->take(work, curves);
    runPieces(engine, {0, static_cast<int32_t>(engine.buffer()->bytes() / sizeof(Pixel))}, work);
    return kStatusOk;
}

Status runRowsHere(const ImageEngine& engine, const SpanWork& work) {
    if (Status state = engine.imageStatus()) return state;
    if (SpanTaker* const taker = engine.spanTaker()) return taker->take(work, nullptr);
    const ImageBuffer& image = *engine.buffer();
    for (int32_t y = 0; y < image.height; ++y) {
        engine.throwIfCancelled();
        work(image.row(y), image.row(y) + image.width);
    }
    return kStatusOk;
}

Status runSpansBeside(const ImageEngine& engine, const SecondImage& other, const SpanPairWork& work) {
    const std::span<const Pixel> block = other.block();
    const auto runReordered = [&](Pixel* first, size_t count, const Pixel* beside) {
        Pixel reordered[kReorderedPixels];
        for (size_t done = 0; done < count; done += kReorderedPixels) {
            const size_t few = std::min(count - done, kReorderedPixels);
            exchangeRedAndBlue(firstByte(beside + done), firstByte(reordered), few);
            work(first + done, few, reordered);
        }
    };
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        const ptrdiff_t start = first - engine.buffer()->row(0);
        const ptrdiff_t left = std::min(last - first, static_cast<ptrdiff_t>(block.size()) - start);
        if (left <= 0) return;
        const auto count = static_cast<size_t>(left);
        if (other.isRedFirst)
            runReordered(first, count, block.data() + start);
        else
            work(first, count, block.data() + start);
    });
}

}  // namespace krl
