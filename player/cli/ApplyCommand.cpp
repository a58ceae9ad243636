#include <algorithm>
#include <cctype>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "player/cli/Batch.h"
#include "player/cli/ChainCall.h"
#include "player/cli/ChainScript.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/ProgressBar.h"
#include "player/cli/SideBySide.h"
#include "player/pictures/Picture.h"

namespace krl::player {

namespace {

namespace fs = std::filesystem;

/// One call on one picture, as it was made and what came of it.
struct CallReport {
    std::string call;
    CallOutcome outcome;
    std::vector<std::string> complaints;
    /// Whether the result says more than that all went well, or that here is the new picture.
    bool telling = false;
};

/// What became of one picture.
struct PictureReport {
    std::vector<CallReport> calls;
    bool written = false;
    std::string failure;  ///< in one line; empty for a picture that was written
};

PictureReport workOn(Session& session, const BatchItem& item, const std::vector<ChainCall>& chain,
                     const WriteOptions& options) {
    PictureReport report;
    try {
        Bitmap picture = readPicture(item.input);
        for (const ChainCall& call : chain) {
            CallReport& made = report.calls.emplace_back();
            made.call = call.lingo(picture.width, picture.height);
            made.outcome = session.apply(picture, made.call);
            const bool plain = made.outcome.shown.empty() || made.outcome.shown == "[#error: 0]";
            made.telling = !plain && !(made.outcome.ok() && call.method().makesPicture());
            if (made.outcome.ok()) continue;
            made.complaints = call.complaints();
            report.failure = item.input.string() + ": " + made.outcome.error + " from " + made.call;
            return report;
        }
        writePicture(item.output, picture, options);
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
        if (!made.complaints.empty()) call["complaints"] = made.complaints;
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
    if (report.calls.empty()) return;
    for (const std::string& complaint : report.calls.back().complaints)
        terminal.err << "  " << complaint << '\n';
}

void tellAll(const std::vector<BatchItem>& items, const std::vector<PictureReport>& reports, size_t failed,
             bool json, const Terminal& terminal) {
    auto all = nlohmann::ordered_json::array();
    for (size_t i = 0; i < items.size(); ++i) {
        if (json)
            all.push_back(jsonOf(items[i], reports[i]));
        else
            showResults(reports[i], terminal);
        if (!reports[i].written) showFailure(reports[i], terminal);
    }
    // Names of files may be bytes of any kind; JSON is not.
    if (json) terminal.out << all.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    if (items.size() > 1)
        terminal.err << items.size() - failed << " of " << items.size() << " pictures done"
                     << (failed > 0 ? ", " + std::to_string(failed) + " failed" : "") << '\n';
}

/// The exit code. What is written stays so, and that is told even where the rest cannot be.
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

/// Something ended the work as a whole: the pictures that nobody worked on failed by it.
void failTheRest(const std::vector<BatchItem>& items, std::vector<PictureReport>& reports,
                 const std::string& why) {
    for (size_t i = 0; i < items.size(); ++i)
        if (!reports[i].written && reports[i].failure.empty())
            reports[i].failure = items[i].input.string() + ": " + why;
}

/// A lone name that nothing has: a method as likely as a folder, and told before anything is written.
void refuseUnknownName(const std::string& word) {
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
    Bitmap picture;
    if (!inputs.empty()) picture = readPicture(inputs.front());
    terminal.out << (inputs.empty() ? chainScript(chain) : chainScript(chain, picture.width, picture.height));
    return 0;
}

}  // namespace

int applyCalls(const ApplyOptions& options, const Terminal& terminal) {
    std::vector<fs::path> inputs;
    std::vector<ChainCall> chain;
    splitWords(options.words, inputs, chain);
    if (options.printLingo) return printScript(inputs, chain, terminal);
    if (inputs.empty()) throw UsageError("which picture? a file or a folder is wanted before the calls");
    if (options.output.empty()) throw UsageError("where to? -o OUT or -o DIR is wanted");

    const std::vector<BatchItem> items = planBatch(inputs, options);
    const WriteOptions writing{options.quality, formatOf("x." + options.format)};
    std::vector<PictureReport> reports(items.size());
    // Whoever writes a call names its pictures too: there is nothing to keep it from.
    SessionOptions settings = options.session;
    settings.allowedFolders.push_back(fs::current_path().root_path());
    try {
        ProgressBar progress(terminal, items.size(), "pictures");
        workSideBySide(items.size(), options.jobs, [&]() -> Worker {
            const auto session = std::make_shared<Session>(settings);
            return [&, session](size_t i) {
                reports[i] = workOn(*session, items[i], chain, writing);
                progress.step();
            };
        });
    } catch (const std::bad_alloc&) {
        failTheRest(items, reports, "out of memory");
    } catch (const ScriptError& error) {
        if (items.size() == 1) throw;
        failTheRest(items, reports, error.what());
    }
    return outcomeOf(items, reports, options.json, terminal);
}

}  // namespace krl::player
