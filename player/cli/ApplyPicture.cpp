#include "player/cli/ApplyPicture.h"

#include <memory>
#include <utility>

#include "player/cli/CatalogueCalls.h"
#include "player/cli/RawFrames.h"
#include "player/cli/ReadRetry.h"
#include "player/cli/Stopwatch.h"
#include "player/cli/StreamedPicture.h"
#include "player/pictures/FileAccess.h"
#include "player/pictures/PictureMetadata.h"

namespace krl::player {

namespace {

/// The first calls, made ready for `picture`: all that treat every pixel alone, which leave its size as it
/// is, or one.
std::vector<ReadyCall> readyCalls(const Bitmap& picture, std::span<const ChainCall> chain) {
    std::vector<ReadyCall> ready;
    for (const ChainCall& call : chain) {
        if (!ready.empty() && !call.method().isPerPixel()) break;
        ready.push_back({call.method(), call.extent(picture.width, picture.height),
                         call.arguments(picture.width, picture.height)});
        if (!call.method().isPerPixel()) break;
    }
    return ready;
}

decltype(ApplyRunner::strip) onStrips(const std::shared_ptr<CatalogueCalls>& calls) {
    return [calls](Bitmap& strip, std::span<const ReadyCall> ready) {
        return calls->applyToStrip(strip, ready);
    };
}

}  // namespace

ApplyRunner makeRunner(const std::vector<MovingCall>& written, const SessionOptions& options,
                       WorkingMemory memory, CallOrder order) {
    const auto moving = moves(written) ? std::make_shared<MovingChain>(written, options) : nullptr;
    if (options.xtraFile.empty()) {
        const auto calls = std::make_shared<CatalogueCalls>(options.threads);
        if (memory == WorkingMemory::Kept) calls->keepMemory();
        return {[calls, order](Bitmap& picture, std::span<const ChainCall> chain) {
                    const size_t most = order == CallOrder::Together ? chain.size() : 1;
                    return calls->apply(picture, readyCalls(picture, chain.first(most)));
                },
                [calls](Bitmap& picture, const ReadyLook& look) { return calls->apply(picture, look); },
                order == CallOrder::Together ? onStrips(calls) : nullptr,
                moving,
                {}};
    }
    const auto session = std::make_shared<Session>(options);
    return {
        [session](Bitmap& picture, std::span<const ChainCall> chain) {
            return std::vector{session->apply(picture, chain.front().lingo(picture.width, picture.height))};
        },
        {},
        {},
        moving,
        {}};
}

namespace {

/// Which second picture of a failed call has another size than the picture, or nothing.
std::string sizeHint(const ChainCall& call, const Bitmap& picture) {
    const std::vector<krl::Value> arguments = call.arguments(picture.width, picture.height);
    for (size_t i = 0; i < arguments.size(); ++i) {
        const auto* second = arguments[i].as<krl::Picture>();
        if (!second || (second->info.width == picture.width && second->info.height == picture.height))
            continue;
        const auto size = [](int32_t width, int32_t height) {
            return std::to_string(width) + " by " + std::to_string(height);
        };
        return std::string("; ") + call.method().arguments()[i].name + " is " +
               size(second->info.width, second->info.height) + " pixels, the picture " +
               size(picture.width, picture.height) + "; fit: #cover, or place: point(0, 0), puts it in";
    }
    return "";
}

/// Looks first, then calls, up to the first that fails; returns a hint why it may have.
std::string runAll(const ApplyRunner& run, const std::vector<ReadyLook>& looks,
                   const std::vector<ChainCall>& chain, Bitmap& picture, PictureReport& report) {
    for (const ReadyLook& look : looks) {
        CallReport& made = report.calls.emplace_back();
        made.call = "look " + look.name;
        {
            const Stopwatch watch(made.milliseconds);
            made.outcome = run.look(picture, look);
        }
        if (!made.outcome.ok()) return "";
    }
    for (std::span<const ChainCall> rest = chain; !rest.empty();) {
        const auto [width, height] = std::pair(picture.width, picture.height);
        double milliseconds = 0;
        std::vector<CallOutcome> outcomes;
        {
            const Stopwatch watch(milliseconds);
            outcomes = run.calls(picture, rest);
        }
        for (CallOutcome& outcome : outcomes) {
            const ChainCall& call = rest.front();
            CallReport& made = report.calls.emplace_back(reportOn(call, std::move(outcome), width, height));
            made.milliseconds = std::exchange(milliseconds, 0);
            if (!made.outcome.ok()) return sizeHint(call, picture);
            rest = rest.subspan(1);
        }
    }
    return "";
}

std::string textOf(const Bitmap& picture) {
    return std::to_string(picture.width) + " by " + std::to_string(picture.height) + " pixels";
}

/// Both get the sum of their times, call by call.
void addTimes(std::vector<CallReport>& sums, std::vector<CallReport>& made) {
    for (size_t i = 0; i < sums.size() && i < made.size(); ++i)
        sums[i].milliseconds = made[i].milliseconds += sums[i].milliseconds;
}

/// Runs everything on all pages or frames; the report has the calls on the first, or on the one that fails.
void runOnFrames(const ApplyRunner& run, const ApplyWork& work, const BatchItem& item, PictureFrames& frames,
                 PictureReport& report) {
    for (Bitmap& frame : frames.pictures) {
        PictureReport made;
        const std::string hint =
            runAll(run, work.looks, chainFor(run, work, item, frame.width, frame.height), frame, made);
        const bool hasFailed = !made.calls.empty() && !made.calls.back().outcome.ok();
        addTimes(report.calls, made.calls);
        if (report.calls.empty() || hasFailed) report.calls = std::move(made.calls);
        if (hasFailed) {
            const CallReport& failed = report.calls.back();
            report.failure = failed.outcome.error + " from " + failed.call + hint;
            return;
        }
        try {
            const Stopwatch watch(report.writing);
            if (!work.delivery.isNothing()) deliver(frame, work.delivery);
        } catch (const PictureError& error) {
            report.failure = error.what();
            return;
        }
        const Bitmap& first = frames.pictures.front();
        if (frame.width == first.width && frame.height == first.height) continue;
        report.failure =
            "one of its pages or frames becomes " + textOf(frame) + ", the first " + textOf(first);
        return;
    }
}

MemoryGate::Share shareFor(const BatchItem& item, FrameChoice choice, const ApplyWork& work) {
    if (!work.memory.hasLimit() || item.input == "/dev/stdin") return {};
    const PictureSize size =
        readPatiently(item.input, work.retries, [&] { return readPictureSize(item.input, choice); });
    return work.memory.take(workingMemory(size, formatFor(item.output, work.options)));
}

PictureReport workOn(const ApplyRunner& run, const ApplyWork& work, size_t index) {
    const BatchItem& item = work.progress.items()[index];
    PictureReport report;
    try {
        if (streamPicture(run, work, index, report)) return report;
        const std::optional<PictureFormat> format = formatFor(item.output, work.options);
        const bool readsAll = !work.firstFrame && format && holdsFrames(*format);
        const FrameChoice choice = readsAll ? FrameChoice::All : FrameChoice::First;
        const MemoryGate::Share share = shareFor(item, choice, work);
        PictureFrames frames = readPatiently(item.input, work.retries, [&] {
            const Stopwatch watch(report.reading);
            return readFrames(item.input, choice);
        });
        report.notes = notesOnLosses(item, frames, work.options);
        runOnFrames(run, work, item, frames, report);
        if (!report.failure.empty()) {
            report.failure = item.input.string() + ": " + report.failure;
            return report;
        }
        work.progress.calledAll(index, report);
        WriteOptions options = work.options;
        options.whenWritten = [&] { work.progress.written(index); };
        const Stopwatch watch(report.writing);
        writeFramesOf(item.input, item.output, frames, options);
        report.written = true;
    } catch (const ScriptError& error) {
        report.failure = item.input.string() + ": " + error.what();
    } catch (const PictureError& error) {
        report.failure = error.what();
    } catch (const std::bad_alloc&) {
        report.failure = item.input.string() + ": out of memory";
    }
    return report;
}

}  // namespace

const std::vector<ChainCall>& chainFor(const ApplyRunner& run, const ApplyWork& work, const BatchItem& item,
                                       int32_t width, int32_t height) {
    return run.moving ? run.moving->at({item.frame, item.frames, work.fps, width, height}) : work.chain;
}

CallReport reportOn(const ChainCall& call, CallOutcome outcome, int32_t width, int32_t height) {
    CallReport made{call.lingo(width, height), std::move(outcome)};
    const bool plain = made.outcome.shown.empty() || made.outcome.shown == "[#error: 0]";
    made.telling = !plain && !(made.outcome.ok() && call.method().makesPicture());
    return made;
}

std::vector<std::string> notesOnLosses(const BatchItem& item, const PictureFrames& frames,
                                       const WriteOptions& options) {
    std::vector<std::string> notes;
    if (const auto& metadata = frames.pictures.front().metadata)
        for (const std::string& loss : metadata->losses)
            notes.push_back(item.input.string() + " loses " + loss);
    for (const std::string& loss : lossesOfWriting(item.output, frames, options))
        notes.push_back(item.input.string() + " loses " + loss);
    return notes;
}

Bitmap changedBy(const ApplyRunner& run, const std::vector<ChainCall>& chain, Bitmap picture) {
    PictureReport report;
    const std::string hint = runAll(run, {}, chain, picture, report);
    if (!report.calls.empty() && !report.calls.back().outcome.ok())
        throw CommandError(report.calls.back().outcome.error + " from " + report.calls.back().call + hint);
    return picture;
}

FrameWorker frameWorker(const std::vector<ReadyLook>& looks, const std::vector<ChainCall>& chain,
                        const std::vector<MovingCall>& calls, const ApplyOptions& options,
                        const SessionOptions& settings) {
    const ApplyRunner run = makeRunner(calls, sessionForFrames(options, settings), WorkingMemory::Kept);
    return [&looks, &chain, &options, run](Bitmap& frame, size_t number) {
        PictureReport report;
        const FrameFacts facts{number, options.frames, options.fps, frame.width, frame.height};
        const std::string hint =
            runAll(run, looks, run.moving ? run.moving->at(facts) : chain, frame, report);
        if (report.calls.empty() || report.calls.back().outcome.ok()) return;
        const CallReport& failed = report.calls.back();
        throw CommandError("frame " + std::to_string(number) + ": " + failed.outcome.error + " from " +
                           failed.call + hint);
    };
}

void applyToPicture(const ApplyRunner& run, const ApplyWork& work, size_t index) {
    if (work.failures.isReached()) return;
    const BatchItem& item = work.progress.items()[index];
    const FileState source = work.ledger ? ApplyLedger::before(item) : FileState();
    work.progress.begin(index);
    PictureReport& report = work.progress.reports[index];
    report = workOn(run, work, index);
    if (!report.written) {
        work.progress.failed(index, report);
        work.failures.count();
    }
    if (work.ledger) work.ledger->note(item, source, report.failure);
}

}  // namespace krl::player
