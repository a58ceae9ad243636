#include "player/cli/ApplyReport.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>

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

/// With every line moved to the right, as part of a list.
std::string indented(const std::string& json) {
    std::string text = "  ";
    for (const char letter : json) {
        text += letter;
        if (letter == '\n') text += "  ";
    }
    return text;
}

}  // namespace

void ApplyReport::show(const BatchItem& item, const PictureReport& report) {
    if (json_) {
        terminal_.out << (std::exchange(isFirst_, false) ? "[\n" : ",\n");
        // File names can hold arbitrary bytes, JSON cannot.
        const auto replacing = nlohmann::json::error_handler_t::replace;
        terminal_.out << indented(jsonOf(item, report).dump(2, ' ', false, replacing));
    } else {
        showResults(report, terminal_);
    }
    showNotes(report.notes, terminal_);
    if (!report.failure.empty()) showFailure(report, terminal_);
}

void ApplyReport::add(const std::vector<BatchItem>& items, const std::vector<PictureReport>& reports) {
    try {
        for (size_t i = 0; i < items.size(); ++i)
            if (reports[i].settled()) show(items[i], reports[i]);
    } catch (const std::bad_alloc&) {
        BatchTotals part;
        part.add(reports);
        terminal_.err << "krlimage: out of memory after " << part.written << " of " << part.pictures
                      << " pictures were written\n";
        ranOut_ = true;
    }
}

int ApplyReport::finish(const BatchTotals& totals) {
    if (json_) terminal_.out << (isFirst_ ? "[]\n" : "\n]\n");
    if (ranOut_) return 1;
    const size_t left = totals.unsettled();
    if (totals.pictures > 1) {
        terminal_.err << totals.written << " of " << totals.pictures << " pictures done";
        if (totals.failed > 0) terminal_.err << ", " << totals.failed << " failed";
        if (left > 0) terminal_.err << ", " << left << " not started";
        terminal_.err << '\n';
    }
    if (left > 0) return kStoppedEarly;
    return totals.failed > 0 ? 1 : 0;
}

}  // namespace krl::player
