#include "player/cli/StreamedPicture.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "player/cli/ReadRetry.h"
#include "player/pictures/PictureStream.h"

namespace krl::player {

namespace {

bool mayStream(const ApplyRunner& run, const ApplyWork& work, const BatchItem& item) {
    // Standard input can be read once, and it may turn out that the picture has to be whole.
    return run.strip && work.looks.empty() && work.delivery.isNothing() && item.input != "/dev/stdin" &&
           std::all_of(work.chain.begin(), work.chain.end(),
                       [](const ChainCall& call) { return call.method().isPerPixel(); });
}

/// The calls made ready for a picture of this size; nothing if one needs the whole picture.
std::optional<std::vector<ReadyCall>> callsForStrips(const std::vector<ChainCall>& chain, int32_t width,
                                                     int32_t height) {
    std::vector<ReadyCall> calls;
    for (const ChainCall& call : chain) {
        calls.push_back({call.method(), call.extent(width, height), call.arguments(width, height)});
        if (!canRunOnStrips(calls.back())) return std::nullopt;
    }
    return calls;
}

/// A picture on its way, with the reports of its calls.
class StreamedPicture {
public:
    StreamedPicture(const ApplyRunner& run, const ApplyWork& work, const BatchItem& item,
                    const WriteOptions& options)
        : run_(run), work_(work), item_(item), stream_(item.input, item.output, options, run.strips) {}

    /// Returns false if the picture has to be whole.
    bool comesThrough() {
        if (!stream_.isPossible()) return false;
        const auto [width, height, metadata] = stream_.head();
        const std::vector<ChainCall>& chain = chainFor(run_, work_, item_, width, height);
        const std::optional<std::vector<ReadyCall>> calls = callsForStrips(chain, width, height);
        if (!calls) return false;
        MemoryGate& memory = work_.memory;
        const MemoryGate::Share share = memory.hasLimit()
                                            ? memory.take(workingMemoryOfStrips(width, run_.strips.pixels))
                                            : MemoryGate::Share();
        std::vector<CallOutcome> outcomes;
        const bool isThrough = stream_.run([&](Bitmap& strip) {
            outcomes = run_.strip(strip, *calls);
            return outcomes.empty() || outcomes.back().ok();
        });
        for (size_t i = 0; isThrough && i < outcomes.size(); ++i)
            reports_.push_back(reportOn(chain[i], std::move(outcomes[i]), width, height));
        return isThrough;
    }

    /// Once it came through.
    void fillIn(PictureReport& report) {
        PictureFrames frames;
        frames.pictures.emplace_back().metadata = stream_.head().metadata;
        report.notes = notesOnLosses(item_, frames, work_.options);
        report.calls = std::move(reports_);
    }
    void commit() { stream_.commit(); }

private:
    const ApplyRunner& run_;
    const ApplyWork& work_;
    const BatchItem& item_;
    PictureStream stream_;
    std::vector<CallReport> reports_;
};

}  // namespace

bool streamPicture(const ApplyRunner& run, const ApplyWork& work, size_t index, PictureReport& report) {
    const BatchItem& item = work.progress.items()[index];
    if (!mayStream(run, work, item)) return false;
    WriteOptions options = work.options;
    options.whenWritten = [&] { work.progress.written(index); };
    std::unique_ptr<StreamedPicture> picture;
    const bool isThrough = readPatiently(item.input, work.retries, [&] {
        picture.reset();
        picture = std::make_unique<StreamedPicture>(run, work, item, options);
        return picture->comesThrough();
    });
    if (!isThrough) return false;
    picture->fillIn(report);
    work.progress.calledAll(index, report);
    picture->commit();
    report.written = true;
    return true;
}

}  // namespace krl::player
