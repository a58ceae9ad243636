#include "core/Bands.h"

#include <cmath>
#include <exception>
#include <new>
#include <vector>

#include "core/Faults.h"
#include "core/Thread.h"

namespace krl {

namespace {

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

}  // namespace krl
