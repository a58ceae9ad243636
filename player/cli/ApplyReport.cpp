#include "player/cli/ApplyReport.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>

#include "catalogue/Catalogue.h"

namespace krl::player {

void showNotes(const std::vector<std::string>& notes, const Terminal& terminal) {
    for (const std::string& note : notes) terminal.err << "krlimage: note: " << note << '\n';
}

namespace {

using Json = nlohmann::ordered_json;

double rounded(double milliseconds) { return std::round(milliseconds * 1000) / 1000; }

Json jsonOf(const CallReport& made, bool isTimed) {
    Json json = {{"call", made.call}, {"result", made.outcome.shown}};
    if (!made.outcome.ok()) json["error"] = made.outcome.error;
    if (isTimed) json["milliseconds"] = rounded(made.milliseconds);
    return json;
}

/// A line without its end.
std::string jsonOf(const BatchItem& item, const PictureReport& report, bool isTimed) {
    Json json = {{"input", item.input.string()}, {"ok", report.failure.empty()}};
    if (report.failure.empty())
        json["output"] = item.output.string();
    else
        json["failure"] = report.failure;
    json["calls"] = Json::array();
    for (const CallReport& made : report.calls) json["calls"].push_back(jsonOf(made, isTimed));
    if (!report.notes.empty()) json["notes"] = report.notes;
    if (isTimed) {
        json["milliseconds"]["read"] = rounded(report.reading);
        if (report.writing > 0) json["milliseconds"]["write"] = rounded(report.writing);
    }
    // File names can hold arbitrary bytes, JSON cannot.
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// `in.jpg: read 41.2 ms, brightness 3.1 ms, write 80.4 ms`.
std::string timingsOf(const BatchItem& item, const PictureReport& report) {
    std::string line = item.input.string(), divider = ": ";
    const auto add = [&](const std::string& what, double milliseconds) {
        char number[32];
        std::snprintf(number, sizeof number, " %.1f ms", milliseconds);
        line += std::exchange(divider, ", ") + what + number;
    };
    add("read", report.reading);
    for (const CallReport& made : report.calls) {
        const Method* method = catalogue().find(made.call.substr(0, made.call.find('(')));
        add(method ? method->shortName() : made.call, made.milliseconds);
    }
    if (report.writing > 0) add("write", report.writing);
    return line;
}

void showResults(const PictureReport& report, const Terminal& terminal) {
    for (const CallReport& made : report.calls)
        if (made.telling) terminal.out << made.outcome.shown << '\n';
}

}  // namespace

void ApplyReport::listFailures(const ApplyOptions& options, bool isContinued) {
    failuresFile_ = options.failures;
    if (failuresFile_.empty()) return;
    std::error_code missing;
    if (std::filesystem::equivalent(failuresFile_, options.inputList, missing))
        throw UsageError("--failures " + failuresFile_.string() +
                         " is the list of --from: name another file");
    failures_.open(failuresFile_, std::ios::binary | (isContinued ? std::ios::app : std::ios::trunc));
    if (!failures_)
        throw CommandError("cannot write " + failuresFile_.string() + ": " + std::strerror(errno));
    if (options.endsWithZero) afterName_ = '\0';
}

void ApplyReport::printLines(ApplyProgress& progress, size_t item) {
    if (!printsLines() && failuresFile_.empty()) return;
    const BatchItem& picture = progress.items()[item];
    const PictureReport& report = progress.reports[item];
    std::string result;
    if (json_)
        result = jsonOf(picture, report, timings_) + '\n';
    else if (isWatching_ && report.written)
        result = picture.input.string() + " -> " + picture.output.string() + '\n';
    const std::string times = timings_ ? timingsOf(picture, report) + '\n' : "";
    const std::lock_guard lock(guard_);
    progress.showOnce(item, [&] {
        terminal_.out << result << std::flush;
        if (timings_) terminal_.err << "krlimage: " << times << std::flush;
        // At once, so that an interruption leaves a whole list.
        if (!report.failure.empty()) failures_ << picture.input.string() << afterName_ << std::flush;
    });
}

void ApplyReport::settled(ApplyProgress& progress, size_t item) {
    try {
        if (progress.reports[item].settled()) printLines(progress, item);
    } catch (const std::bad_alloc&) {
        // The end of the part tries again.
    }
}

void ApplyReport::show(const PictureReport& report) const {
    if (!json_) showResults(report, terminal_);
    showNotes(report.notes, terminal_);
    if (!report.failure.empty()) terminal_.err << "krlimage: " << report.failure << '\n';
}

void ApplyReport::add(ApplyProgress& progress) {
    try {
        for (size_t i = 0; i < progress.reports.size(); ++i) {
            if (!progress.reports[i].settled()) continue;
            printLines(progress, i);
            show(progress.reports[i]);
        }
    } catch (const std::bad_alloc&) {
        BatchTotals part;
        part.add(progress.reports);
        terminal_.err << "krlimage: out of memory after " << part.written << " of " << part.pictures
                      << " pictures were written\n";
        ranOut_ = true;
    }
    terminal_.out << std::flush;
}

int ApplyReport::finish(const BatchTotals& totals) {
    if (ranOut_) return 1;
    const size_t left = totals.unsettled();
    if (totals.pictures > 1) {
        terminal_.err << totals.written << " of " << totals.pictures << " pictures done";
        if (totals.failed > 0) terminal_.err << ", " << totals.failed << " failed";
        if (left > 0) terminal_.err << ", " << left << " not started";
        terminal_.err << '\n';
    }
    const bool isListed = failuresFile_.empty() || failures_;
    if (!isListed) terminal_.err << "krlimage: cannot write all of " << failuresFile_.string() << '\n';
    if (left > 0) return kStoppedEarly;
    return totals.failed > 0 || !isListed ? 1 : 0;
}

}  // namespace krl::player
