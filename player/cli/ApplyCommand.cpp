#include <algorithm>
#include <cctype>
#include <optional>
#include <ostream>
#include <sstream>

#include "player/cli/ApplyOptions.h"
#include "player/cli/ApplyPicture.h"
#include "player/cli/ApplyReport.h"
#include "player/cli/ChainCall.h"
#include "player/cli/ChainScript.h"
#include "player/cli/LookFiles.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/ProgressBar.h"
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
void refuseUnknownName(const std::string& word) {
    if (isStandardStream(word)) return;
    const bool lone = std::all_of(word.begin(), word.end(),
                                  [](unsigned char letter) { return std::isalnum(letter) || letter == '_'; });
    std::error_code unreadable;
    if (lone && !fs::exists(word, unreadable))
        throw CommandError("there is no picture, folder or method \"" + word + '"' + methodMeantBy(word));
}

void splitWords(const std::vector<std::string>& words, std::vector<fs::path>& inputs,
                std::vector<ChainCall>& chain) {
    for (const std::string& word : words) {
        if (looksLikeCall(word)) {
            chain.emplace_back(word);
            continue;
        }
        refuseUnknownName(word);
        inputs.emplace_back(word);
    }
}

int printScript(const std::vector<fs::path>& inputs, const std::vector<ChainCall>& chain,
                const Terminal& terminal) {
    for (const ChainCall& call : chain)
        if (call.hasExtent() || call.hasPlacement())
            throw CommandError(call.written() +
                               ": mix, mask, region, place, scale and fit cannot be printed as a script");
    Bitmap picture;
    if (!inputs.empty()) picture = readPicture(inputs.front());
    terminal.out << (inputs.empty() ? chainScript(chain) : chainScript(chain, picture.width, picture.height));
    return 0;
}

/// Adds the inputs in a file, one a line.
void addListed(const fs::path& list, std::vector<fs::path>& inputs) {
    if (list.empty()) return;
    std::istringstream lines(readText(list));
    for (std::string line; std::getline(lines, line);)
        if (!line.empty()) inputs.emplace_back(line);
}

std::string exampleOf(const std::vector<ChainCall>& chain) {
    const std::string call = chain.empty() ? "sepia" : chain.front().written();
    return ", as in krlimage apply in.jpg -o out.jpg '" + call + '\'';
}

int printPlan(const std::vector<fs::path>& inputs, const ApplyOptions& options, const Terminal& terminal) {
    std::vector<std::string> notes;
    for (const BatchItem& item : planBatch(inputs, options, &notes))
        terminal.out << item.input.string() << " -> " << item.output.string() << '\n';
    showNotes(notes, terminal);
    return 0;
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

void evaluate(std::vector<ChainCall>& chain, const SessionOptions& settings) {
    if (chain.empty()) return;
    Session session(settings);
    for (ChainCall& call : chain) {
        call.evaluate(session);
        if ((call.hasExtent() || call.hasPlacement()) && !settings.xtraFile.empty())
            throw UsageError(
                call.written() +
                ": mix, mask, region, place, scale and fit need the built-in effects, not --xtra");
    }
}

}  // namespace

int applyCalls(const ApplyOptions& options, const Terminal& terminal) {
    const TimeLimit limit(options.timeout, terminal.live);
    std::vector<fs::path> inputs;
    std::vector<ChainCall> chain;
    splitWords(options.words, inputs, chain);
    if (!options.looks.empty() && !options.session.xtraFile.empty())
        throw UsageError("--look and --xtra cannot be combined: looks run on the built-in effects");
    if (options.looks.empty() && !options.settings.empty())
        throw UsageError("--set " + options.settings.front() + ": there is no --look");
    if (!options.print.empty() && !options.looks.empty())
        throw UsageError("--print lingo prints calls, not looks");
    if (!options.print.empty()) return printScript(inputs, chain, terminal);
    addListed(options.inputList, inputs);
    if (inputs.empty()) throw UsageError("no input: name a picture or a folder" + exampleOf(chain));
    if (options.output.empty() && !options.inPlace)
        throw UsageError("no output: use -o FILE or -o DIR" + exampleOf(chain));
    if (options.dryRun) return printPlan(inputs, options, terminal);

    // The user wrote the calls and named the pictures, so no folder is off limits.
    SessionOptions settings = options.session;
    settings.allowedFolders.push_back(fs::current_path().root_path());
    const std::vector<ReadyLook> looks = readyLooks(options.looks, options.settings);
    evaluate(chain, settings);
    ApplyProgress progress(inputs, options);
    const WriteOptions writing = writingFor(options);
    showNotes(progress.notes(), terminal);
    // Nothing but the picture goes to standard output.
    const Terminal results{isStandardStream(options.output) ? terminal.err : terminal.out, terminal.err,
                           terminal.live};
    const ApplyWork work{looks, chain, writing, options.firstFrame, options.delivery, progress};
    try {
        ProgressBar bar(terminal, progress.alone().size() + progress.together().size(), "pictures");
        const auto workOnEach = [&](const std::vector<size_t>& indexes, unsigned jobs) {
            workSideBySide(indexes.size(), jobs, [&]() -> Worker {
                return [&, run = makeRunner(settings)](size_t i) {
                    applyToPicture(run, work, indexes[i]);
                    bar.step();
                };
            });
        };
        workOnEach(progress.alone(), 1);
        workOnEach(progress.together(), options.jobs);
    } catch (const std::bad_alloc&) {
        failTheRest(progress, "out of memory");
    } catch (const ScriptError& error) {
        if (progress.items().size() == 1) throw;
        failTheRest(progress, error.what());
    }
    return showOutcome(progress.items(), progress.reports, options.json, results);
}

}  // namespace krl::player
