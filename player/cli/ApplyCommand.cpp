#include <algorithm>
#include <cctype>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <sstream>

#include "player/cli/ApplyProgress.h"
#include "player/cli/CatalogueCalls.h"
#include "player/cli/ChainCall.h"
#include "player/cli/ChainScript.h"
#include "player/cli/LookFiles.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/ProgressBar.h"
#include "player/cli/SideBySide.h"
#include "player/cli/TextFile.h"
#include "player/cli/TimeLimit.h"
#include "player/pictures/FileAccess.h"
#include "player/pictures/Picture.h"

namespace krl::player {

namespace {

namespace fs = std::filesystem;

/// What the processing of every picture shares.
struct Work {
    const std::vector<ReadyLook>& looks;
    const std::vector<ChainCall>& chain;
    const WriteOptions& options;
    ApplyProgress& progress;
};

/// Runs looks and calls on a picture: through the catalogue, or calls through a plug-in from a file.
struct Runner {
    std::function<CallOutcome(Bitmap& picture, const ChainCall& call)> call;
    std::function<CallOutcome(Bitmap& picture, const ReadyLook& look)> look;
};

Runner makeRunner(const SessionOptions& options) {
    if (options.xtraFile.empty()) {
        const auto calls = std::make_shared<CatalogueCalls>(options.threads);
        return {[calls](Bitmap& picture, const ChainCall& call) {
                    const auto [width, height] = std::pair(picture.width, picture.height);
                    return calls->apply(picture, call.method(), call.arguments(width, height),
                                        call.extent(width, height));
                },
                [calls](Bitmap& picture, const ReadyLook& look) { return calls->apply(picture, look); }};
    }
    const auto session = std::make_shared<Session>(options);
    return {[session](Bitmap& picture, const ChainCall& call) {
                return session->apply(picture, call.lingo(picture.width, picture.height));
            },
            {}};
}

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
               size(picture.width, picture.height);
    }
    return "";
}

/// Looks first, then calls, up to the first that fails; returns a hint why it may have.
std::string runAll(const Runner& run, const Work& work, Bitmap& picture, PictureReport& report) {
    for (const ReadyLook& look : work.looks) {
        CallReport& made = report.calls.emplace_back();
        made.call = "look " + look.name;
        made.outcome = run.look(picture, look);
        if (!made.outcome.ok()) return "";
    }
    for (const ChainCall& call : work.chain) {
        CallReport& made = report.calls.emplace_back();
        made.call = call.lingo(picture.width, picture.height);
        made.outcome = run.call(picture, call);
        const bool plain = made.outcome.shown.empty() || made.outcome.shown == "[#error: 0]";
        made.telling = !plain && !(made.outcome.ok() && call.method().makesPicture());
        if (!made.outcome.ok()) return sizeHint(call, picture);
    }
    return "";
}

PictureReport workOn(const Runner& run, const Work& work, size_t index) {
    const BatchItem& item = work.progress.items()[index];
    PictureReport report;
    try {
        for (const std::string& loss : lossesIn(item.input))
            report.notes.push_back(item.input.string() + " loses " + loss);
        Bitmap picture = readPicture(item.input);
        const std::string hint = runAll(run, work, picture, report);
        if (!report.calls.empty() && !report.calls.back().outcome.ok()) {
            const CallReport& failed = report.calls.back();
            report.failure =
                item.input.string() + ": " + failed.outcome.error + " from " + failed.call + hint;
            return report;
        }
        work.progress.calledAll(index, report);
        WriteOptions options = work.options;
        options.whenWritten = [&] { work.progress.written(index); };
        writePictureOf(item.input, item.output, picture, options);
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

void settle(const Runner& run, const Work& work, size_t index) {
    work.progress.begin(index);
    PictureReport& report = work.progress.reports[index];
    report = workOn(run, work, index);
    if (!report.written) work.progress.failed(index, report);
}

nlohmann::ordered_json jsonOf(const BatchItem& item, const PictureReport& report) {
    nlohmann::ordered_json json = {{"input", item.input.string()}, {"ok", report.failure.empty()}};
    if (report.failure.empty())
        json["output"] = item.output.string();
    else
        json["failure"] = report.failure;
    json["calls"] = nlohmann::ordered_json::array();
    for (const CallReport& made : report.calls) {
        nlohmann::ordered_json call = {{"call", made.call}, {"result", made.outcome.shown}};
        if (!made.outcome.ok()) call["error"] = made.outcome.error;
        json["calls"].push_back(call);
    }
    return json;
}

void showResults(const PictureReport& report, const Terminal& terminal) {
    for (const CallReport& made : report.calls)
        if (made.telling) terminal.out << made.outcome.shown << '\n';
}

void showFailure(const PictureReport& report, const Terminal& terminal) {
    terminal.err << "krlimage: " << report.failure << '\n';
}

void showNotes(const std::vector<std::string>& notes, const Terminal& terminal) {
    for (const std::string& note : notes) terminal.err << "krlimage: note: " << note << '\n';
}

void tellAll(const std::vector<BatchItem>& items, const std::vector<PictureReport>& reports, size_t failed,
             bool json, const Terminal& terminal) {
    auto all = nlohmann::ordered_json::array();
    for (size_t i = 0; i < items.size(); ++i) {
        if (json)
            all.push_back(jsonOf(items[i], reports[i]));
        else
            showResults(reports[i], terminal);
        showNotes(reports[i].notes, terminal);
        if (!reports[i].written) showFailure(reports[i], terminal);
    }
    // File names can hold arbitrary bytes, JSON cannot.
    if (json) terminal.out << all.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    if (items.size() > 1)
        terminal.err << items.size() - failed << " of " << items.size() << " pictures done"
                     << (failed > 0 ? ", " + std::to_string(failed) + " failed" : "") << '\n';
}

/// Prints the results and returns the exit code. If memory runs out meanwhile, it still reports how many
/// pictures were written.
int outcomeOf(const std::vector<BatchItem>& items, const std::vector<PictureReport>& reports, bool json,
              const Terminal& terminal) {
    const auto written = static_cast<size_t>(std::count_if(
        reports.begin(), reports.end(), [](const PictureReport& report) { return report.written; }));
    const size_t failed = items.size() - written;
    try {
        tellAll(items, reports, failed, json, terminal);
    } catch (const std::bad_alloc&) {
        terminal.err << "krlimage: out of memory after " << written << " of " << items.size()
                     << " pictures were written\n";
        return 1;
    }
    return failed > 0 ? 1 : 0;
}

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
        if (call.hasExtent())
            throw CommandError(call.written() + ": mix, mask and region cannot be printed as a script");
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

/// PNG for a pipe, which has no name to tell the format by.
std::optional<PictureFormat> formatFor(const ApplyOptions& options) {
    return formatOf(options.format.empty() && isStandardStream(options.output) ? "x.png"
                                                                               : "x." + options.format);
}

void evaluate(std::vector<ChainCall>& chain, const SessionOptions& settings) {
    if (chain.empty()) return;
    Session session(settings);
    for (ChainCall& call : chain) {
        call.evaluate(session);
        if (call.hasExtent() && !settings.xtraFile.empty())
            throw UsageError(call.written() + ": mix, mask and region need the built-in effects, not --xtra");
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
    const WriteOptions writing{options.quality, formatFor(options), {}};
    showNotes(progress.notes(), terminal);
    // Nothing but the picture goes to standard output.
    const Terminal results{isStandardStream(options.output) ? terminal.err : terminal.out, terminal.err,
                           terminal.live};
    const Work work{looks, chain, writing, progress};
    try {
        ProgressBar bar(terminal, progress.alone().size() + progress.together().size(), "pictures");
        const auto workOnEach = [&](const std::vector<size_t>& indexes, unsigned jobs) {
            workSideBySide(indexes.size(), jobs, [&]() -> Worker {
                return [&, run = makeRunner(settings)](size_t i) {
                    settle(run, work, indexes[i]);
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
    return outcomeOf(progress.items(), progress.reports, options.json, results);
}

}  // namespace krl::player
