#include "player/cli/ApplyReport.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

namespace krl::player {

void showNotes(const std::vector<std::string>& notes, const Terminal& terminal) {
    for (const std::string& note : notes) terminal.err << "krlimage: note: " << note << '\n';
}

namespace {

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

}  // namespace

int showOutcome(const std::vector<BatchItem>& items, const std::vector<PictureReport>& reports, bool json,
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

}  // namespace krl::player
