#include "player/cli/ApplyProgress.h"

#include <nlohmann/json.hpp>

#include "player/cli/ApplyOptions.h"

namespace krl::player {

namespace {

using Json = nlohmann::json;

/// Names and messages can hold arbitrary bytes, which the binary form preserves.
std::string packed(const Json& json) {
    const std::vector<uint8_t> bytes = Json::to_cbor(json);
    return {bytes.begin(), bytes.end()};
}

Json unpacked(const std::string& bytes) { return Json::from_cbor(bytes); }

std::string packed(const std::vector<BatchItem>& items) {
    Json json = Json::array();
    for (const BatchItem& item : items) json.push_back({item.input.string(), item.output.string()});
    return packed(json);
}

std::string packed(const PictureReport& report) {
    Json calls = Json::array();
    for (const CallReport& made : report.calls)
        calls.push_back({made.call, made.outcome.error, made.outcome.shown, made.telling});
    return packed({report.failure, calls, report.notes});
}

PictureReport reportOf(const std::string& bytes) {
    const Json json = unpacked(bytes);
    PictureReport report;
    report.failure = json[0];
    for (const Json& made : json[1]) report.calls.push_back({made[0], {made[1], made[2]}, made[3]});
    report.notes = json[2].get<std::vector<std::string>>();
    return report;
}

}  // namespace

ApplyProgress::ApplyProgress(const std::vector<std::filesystem::path>& inputs, const ApplyOptions& options) {
    if (!journal_.past().empty()) {
        resume();
        return;
    }
    items_ = planBatch(inputs, options, &notes_);
    reports.resize(items_.size());
    for (size_t i = 0; i < items_.size(); ++i) together_.push_back(i);
    if (journal_.kept()) journal_.note(JournalEntry::Kind::Plan, 0, packed(items_));
}

void ApplyProgress::calledAll(size_t item, const PictureReport& report) const {
    if (journal_.kept()) journal_.note(JournalEntry::Kind::Report, item, packed(report));
}

void ApplyProgress::failed(size_t item, const PictureReport& report) const {
    if (journal_.kept()) journal_.note(JournalEntry::Kind::Failed, item, packed(report));
}

/// Any picture in progress may have caused the crash. If there was only one, it did.
void ApplyProgress::resume() {
    std::vector<bool> begun;
    int signal = 0;
    for (const JournalEntry& entry : journal_.past()) {
        if (entry.kind == JournalEntry::Kind::Crash) signal = static_cast<int>(entry.item);
        apply(entry, begun);
    }
    for (size_t i = 0; i < items_.size(); ++i)
        if (!reports[i].settled()) (begun[i] ? alone_ : together_).push_back(i);
    if (alone_.empty()) throw CommandError("the program crashed: " + crashName(signal));
    journal_.note(JournalEntry::Kind::Restart, 0);
    if (alone_.size() > 1) return;
    const size_t cause = alone_.front();
    alone_.clear();
    reports[cause].failure =
        items_[cause].input.string() + ": the program crashed on this picture: " + crashName(signal);
    failed(cause, reports[cause]);
}

void ApplyProgress::apply(const JournalEntry& entry, std::vector<bool>& begun) {
    switch (entry.kind) {
        case JournalEntry::Kind::Plan:
            for (const Json& item : unpacked(entry.text))
                items_.push_back({item[0].get<std::string>(), item[1].get<std::string>()});
            reports.resize(items_.size());
            begun.resize(items_.size());
            return;
        case JournalEntry::Kind::Restart:
            begun.assign(items_.size(), false);
            return;
        case JournalEntry::Kind::Begun:
            begun.at(entry.item) = true;
            return;
        case JournalEntry::Kind::Report:
        case JournalEntry::Kind::Failed:
            reports.at(entry.item) = reportOf(entry.text);
            return;
        case JournalEntry::Kind::Written:
            reports.at(entry.item).written = true;
            return;
        case JournalEntry::Kind::Crash:
            return;
    }
}

}  // namespace krl::player
