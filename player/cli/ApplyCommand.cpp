#include <algorithm>
#include <cctype>
#include <optional>
#include <ostream>
#include <utility>

#include "core/Thread.h"
#include "player/cli/ApplyLedger.h"
#include "player/cli/ApplyOptions.h"
#include "player/cli/ApplyPicture.h"
#include "player/cli/ApplyReport.h"
#include "player/cli/BatchParts.h"
#include "player/cli/BatchPlan.h"
#include "player/cli/ChainCall.h"
#include "player/cli/ChainNotes.h"
#include "player/cli/ChainScript.h"
#include "player/cli/LookFiles.h"
#include "player/cli/LoopScript.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/MovingChain.h"
#include "player/cli/ProgressBar.h"
#include "player/cli/RawFrames.h"
#include "player/cli/Sequence.h"
#include "player/cli/SideBySide.h"
#include "player/cli/TextFile.h"
#include "player/cli/TimeLimit.h"
#include "player/pictures/PictureFiles.h"

namespace krl::player {

namespace {

namespace fs = std::filesystem;

/// Marks the pictures that were not processed as failed, after an error that ended the whole batch.
void failTheRest(ApplyProgress& progress, const std::string& why) {
    for (size_t i = 0; i < progress.items().size(); ++i)
        if (!progress.reports[i].settled())
            progress.reports[i].failure = progress.items()[i].input.string() + ": " + why;
}

/// Rejects a single word that names neither a file nor a method, before anything is written.
void refuseUnknownName(const std::string& word, const std::string& before) {
    if (isStandardStream(word)) return;
    const bool lone = std::all_of(word.begin(), word.end(),
                                  [](unsigned char letter) { return std::isalnum(letter) || letter == '_'; });
    std::error_code unreadable;
    if (!lone || fs::exists(word, unreadable)) return;
    if (catalogue().find(before))
        throw CommandError("there is no picture or folder \"" + word +
                           "\"; the arguments of a call are in brackets, "
                           "and quoted for the shell: '" +
                           before + '(' + word + ")'");
    throw CommandError("there is no picture, folder or method \"" + word + '"' + methodMeantBy(word));
}

void splitWords(const std::vector<std::string>& words, std::vector<fs::path>& inputs,
                std::vector<MovingCall>& calls) {
    std::string before;
    for (const std::string& word : words) {
        const std::string last = std::exchange(before, word);
        if (looksLikeCall(word)) {
            calls.emplace_back(word);
            continue;
        }
        refuseUnknownName(word, last);
        inputs.emplace_back(word);
    }
}

/// The loop over the frames of a sequence.
void printLoop(const std::vector<fs::path>& inputs, const std::vector<MovingCall>& calls,
               const std::vector<ChainCall>& chain, const ApplyOptions& options, const Terminal& terminal) {
    const auto input = inputs.size() == 1 ? Sequence::named(inputs.front()) : std::nullopt;
    const auto output = Sequence::named(options.output);
    if (!input || !output)
        throw UsageError(
            "--print lingo of arguments that move is for sequences, as in krlimage apply "
            "'in/%04d.png' -o 'out/%04d.png'");
    const Bitmap first = readPicture(input->file(input->numbers().front()));
    terminal.out << loopScript(calls, chain, *input, *output, {0, 1, options.fps, first.width, first.height});
}

int printScript(const std::vector<fs::path>& inputs, const std::vector<MovingCall>& calls,
                const std::vector<ChainCall>& chain, const ApplyOptions& options, const Terminal& terminal) {
    for (const ChainCall& call : chain)
        if (call.hasExtent() || call.hasPlacement())
            throw CommandError(call.written() +
                               ": mix, mask, region, place, scale and fit cannot be printed as a script");
    if (moves(calls) || (inputs.size() == 1 && Sequence::named(inputs.front()))) {
        printLoop(inputs, calls, chain, options, terminal);
        return 0;
    }
    Bitmap picture;
    if (!inputs.empty()) picture = readPicture(inputs.front());
    terminal.out << (inputs.empty() ? chainScript(chain) : chainScript(chain, picture.width, picture.height));
    return 0;
}

std::string exampleOf(const std::vector<ChainCall>& chain) {
    const std::string call = chain.empty() ? "sepia" : chain.front().written();
    return ", as in krlimage apply in.jpg -o out.jpg '" + call + '\'';
}

WriteOptions writingFor(const ApplyOptions& options) {
    WriteOptions writing;
    writing.quality = options.quality;
    writing.depth = options.depth;
    writing.compression = options.compression;
    writing.chroma = options.chroma;
    writing.profile = options.profile == "keep" ? "" : options.profile;
    writing.isStripped = options.strip;
    // PNG for a pipe, which has no name to tell the format by.
    const bool isUnknown = options.format.empty() && isStandardStream(options.output);
    writing.format = formatOf(isUnknown ? "x.png" : "x." + options.format);
    return writing;
}

int printOutputs(BatchParts& parts, const ApplyOptions& options, const std::vector<MovingCall>& calls,
                 const Terminal& terminal) {
    std::optional<RecordedResults> recorded;
    if (options.resume) recorded.emplace(outputFolder(options), shardOf(options).value_or(Shard(1, 1)));
    const MadeBy made(options, calls, writingFor(options));
    while (const std::optional<BatchPart> part = parts.next()) {
        std::vector<std::string> notes;
        for (const BatchItem& item : planBatch(*part, options, &notes))
            if (!recorded || !recorded->has(item, nameBelowOutput(item.output, options), made))
                terminal.out << item.input.string() << " -> " << item.output.string() << '\n';
        showNotes(notes, terminal);
    }
    return 0;
}

void evaluate(std::vector<ChainCall>& chain, const ApplyOptions& options, const SessionOptions& settings,
              const Terminal& terminal) {
    if (chain.empty()) return;
    Session session(settings);
    for (ChainCall& call : chain) {
        call.evaluate(session);
        if ((call.hasExtent() || call.hasPlacement()) && !settings.xtraFile.empty())
            throw UsageError(
                call.written() +
                ": mix, mask, region, place, scale and fit need the built-in effects, not --xtra");
    }
    const std::vector<std::string> notes = notesOn(chain);
    if (options.strict && !notes.empty()) throw CommandError(notes.front() + " (--strict)");
    showNotes(notes, terminal);
}

void requireOutput(const ApplyOptions& options, const std::vector<ChainCall>& chain) {
    if (options.output.empty() && !options.inPlace)
        throw UsageError("no output: use -o FILE or -o DIR" + exampleOf(chain));
    if (options.keepsLedger() && (options.output.empty() || isStandardStream(options.output)))
        throw UsageError("--ledger and --resume need -o DIR, which has the ledger");
    if (options.overwrite && (options.skipExisting || options.newer))
        throw UsageError("--overwrite excludes --skip-existing and --newer");
    if (!options.shard.empty() && options.nameTemplate.find("{n}") != std::string::npos)
        throw UsageError("--name: {n} counts the pictures of one run, and --shard makes several");
}

/// What a watch, which has no end, cannot do.
void refuseWithWatch(const ApplyOptions& options, const std::vector<fs::path>& inputs,
                     const std::vector<MovingCall>& calls) {
    const std::pair<bool, const char*> all[] = {
        {!inputs.empty(), "inputs"},
        {!options.inputList.empty(), "--from"},
        {!options.raw.empty(), "--raw"},
        {options.inPlace, "--in-place"},
        {options.dryRun, "--dry-run"},
        {options.plan, "--plan"},
        {!options.shard.empty(), "--shard"},
        {options.keepsLedger(), "--ledger and --resume"},
        {moves(calls), "arguments that move"},
        {options.nameTemplate.find("{n}") != std::string::npos, "{n} in --name"}};
    for (const auto& [isGiven, what] : all)
        if (isGiven) throw UsageError(std::string("--watch goes on until interrupted: leave out ") + what);
    if (options.output.empty() || isStandardStream(options.output) || Sequence::named(options.output))
        throw UsageError("--watch needs -o DIR");
}

/// How many threads each of the pictures that are worked on together may use, so that all processors are.
unsigned threadsForEach(size_t pictures, unsigned jobs, ThreadChoice threads) {
    const auto processors = static_cast<unsigned>(processorCount());
    const size_t together = std::min<size_t>(jobs == 0 ? processors : jobs, pictures);
    if (threads == ThreadChoice::One || together == 0) return 1;
    return std::max(1u, processors / static_cast<unsigned>(together));
}

/// Works on the pictures of a part. Returns whether the next part can follow.
bool workOnPart(const ApplyWork& work, const std::vector<MovingCall>& calls, const ApplyOptions& options,
                const SessionOptions& settings, ApplyReport& report, const Terminal& terminal) {
    ApplyProgress& progress = work.progress;
    try {
        // Lines that are printed meanwhile show the progress as well.
        const Terminal quiet{terminal.out, terminal.err, terminal.live && !report.printsLines()};
        ProgressBar bar(quiet, progress.alone().size() + progress.together().size(), "pictures");
        const CallOrder order = options.timings ? CallOrder::OneByOne : CallOrder::Together;
        const auto workOnEach = [&](const std::vector<size_t>& indexes, unsigned jobs) {
            workSideBySide(indexes.size(), jobs, [&]() -> Worker {
                ApplyRunner runner = makeRunner(calls, settings, WorkingMemory::GivenBack, order);
                runner.strips.threads = threadsForEach(indexes.size(), jobs, settings.threads);
                return [&, run = std::move(runner)](size_t i) {
                    applyToPicture(run, work, indexes[i]);
                    report.settled(progress, indexes[i]);
                    bar.step();
                };
            });
        };
        workOnEach(progress.alone(), 1);
        workOnEach(progress.together(), options.jobs);
        return progress.totals().unsettled() == 0;
    } catch (const std::bad_alloc&) {
        failTheRest(progress, "out of memory");
    } catch (const ScriptError& error) {
        if (progress.items().size() == 1) throw;
        failTheRest(progress, error.what());
    }
    return false;
}

/// What is done, for people who read a ledger.
std::string wordsOf(const ApplyOptions& options, const std::vector<MovingCall>& calls) {
    std::string words;
    for (const std::string& look : options.looks) words += "--look " + look + ' ';
    for (const MovingCall& call : calls) words += call.text() + ' ';
    if (!words.empty()) words.pop_back();
    return words;
}

/// Pictures in parallel leave some for what their sizes do not show.
uint64_t memoryFor(const ApplyOptions& options, size_t pictures) {
    const bool isParallel = options.jobs != 1 && (pictures > 1 || !options.inputList.empty());
    return options.memory > 0 || !isParallel ? options.memory : availableMemory() / 8 * 7;
}

int workOnAll(BatchParts& parts, const ApplyOptions& options, const std::vector<MovingCall>& calls,
              const std::vector<ChainCall>& chain, const SessionOptions& settings, const Terminal& terminal) {
    const std::vector<ReadyLook> looks = readyLooks(options.looks, options.settings);
    const WriteOptions writing = writingFor(options);
    std::optional<ApplyLedger> ledger;
    if (options.keepsLedger())
        ledger.emplace(options, MadeBy(options, calls, writing), wordsOf(options, calls));
    // Nothing but the picture goes to standard output.
    const Terminal results{isStandardStream(options.output) ? terminal.err : terminal.out, terminal.err,
                           terminal.live};
    ApplyProgress progress(parts, options, ledger ? &*ledger : nullptr);
    ApplyReport report(options, results);
    report.listFailures(options, progress.isContinued());
    bool hasNext = progress.next();
    MemoryGate memory(memoryFor(options, progress.items().size()));
    FailureLimit failures(options.mostFailures, progress.totals().failed);
    const ApplyWork work{looks,
                         chain,
                         options.fps,
                         writing,
                         options.firstFrame,
                         options.delivery,
                         progress,
                         ledger ? &*ledger : nullptr,
                         options.retries,
                         memory,
                         failures};
    bool isThrough = true;
    for (; hasNext; hasNext = isThrough && progress.next()) {
        showNotes(progress.notes(), terminal);
        isThrough = workOnPart(work, calls, options, settings, report, terminal);
        report.add(progress);
    }
    const int code = report.finish(progress.totals());
    const std::string unwritten = ledger ? ledger->finish(isThrough) : "";
    if (!unwritten.empty()) terminal.err << "krlimage: " << unwritten << '\n';
    return code == 0 && !unwritten.empty() ? 1 : code;
}

}  // namespace

int applyCalls(const ApplyOptions& asked, const Terminal& terminal) {
    ApplyOptions options = asked;
    if (!options.watch.empty()) options.root = options.watch;
    const TimeLimit limit(options.timeout, terminal.live);
    std::vector<fs::path> inputs;
    std::vector<MovingCall> calls;
    splitWords(options.words, inputs, calls);
    // The user wrote the calls and named the pictures, so no folder is off limits.
    SessionOptions settings = options.session;
    settings.allowedFolders.push_back(fs::current_path().root_path());
    const size_t frames = options.raw.empty() ? 1 : options.frames;
    std::vector<ChainCall> chain =
        firstChain(calls, {0, frames, options.fps, kUsualWidth, kUsualHeight}, settings);
    if (!options.looks.empty() && !options.session.xtraFile.empty())
        throw UsageError("--look and --xtra cannot be combined: looks run on the built-in effects");
    if (options.looks.empty() && !options.settings.empty())
        throw UsageError("--set " + options.settings.front() + ": there is no --look");
    if (!options.print.empty() && !options.looks.empty())
        throw UsageError("--print lingo prints calls, not looks");
    if (moves(calls) && !options.inputList.empty())
        throw UsageError(
            "arguments that move need all frames: name a sequence or a folder instead of --from");
    if (!options.print.empty()) return printScript(inputs, calls, chain, options, terminal);
    if (!options.watch.empty()) refuseWithWatch(options, inputs, calls);
    if (inputs.empty() && options.inputList.empty() && options.watch.empty())
        throw UsageError("no input: name a picture or a folder" + exampleOf(chain));
    requireOutput(options, chain);
    if (!options.raw.empty()) {
        const std::vector<ReadyLook> looks = readyLooks(options.looks, options.settings);
        evaluate(chain, options, settings, terminal);
        return applyToFrames(options, inputs,
                             [&] { return frameWorker(looks, chain, calls, options, settings); });
    }
    BatchParts parts(inputs, options);
    if (options.dryRun) return printOutputs(parts, options, calls, terminal);
    if (options.plan) return printPlan(parts, options, writingFor(options), terminal);
    evaluate(chain, options, settings, terminal);
    return workOnAll(parts, options, calls, chain, settings, terminal);
}

}  // namespace krl::player
