#include "player/cli/ApplyProgress.h"

#include <nlohmann/json.hpp>
#include <numeric>

#include "player/cli/ApplyLedger.h"
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

std::string packed(const PictureReport& report) {
    Json calls = Json::array();
    for (const CallReport& made : report.calls)
        calls.push_back({made.call, made.outcome.error, made.outcome.shown, made.telling, made.milliseconds});
    return packed({report.failure, calls, report.notes, report.reading});
}

PictureReport reportOf(const std::string& bytes) {
    const Json json = unpacked(bytes);
    PictureReport report;
    report.failure = json[0];
    for (const Json& made : json[1]) report.calls.push_back({made[0], {made[1], made[2]}, made[3], made[4]});
    report.notes = json[2].get<std::vector<std::string>>();
    report.reading = json[3];
    return report;
}

}  // namespace

void BatchTotals::add(const std::vector<PictureReport>& reports) {
    pictures += reports.size();
    for (const PictureReport& report : reports) {
        written += report.written ? 1 : 0;
        failed += !report.written && !report.failure.empty() ? 1 : 0;
    }
}

bool ApplyProgress::next() {
    if (!journal_.past().empty() && items_.empty()) {
        resume();
        return true;
    }
    totals_ = totals();
    reports.clear();
    const std::optional<BatchPart> part = parts_.next();
    if (!part) return false;
    notes_.clear();
    items_ = planBatch(*part, options_, &notes_);
    if (ledger_) ledger_->leaveOutDone(items_, notes_);
    reports.assign(items_.size(), {});
    shown_.assign(items_.size(), 0);
    alone_.clear();
    together_.resize(items_.size());
    std::iota(together_.begin(), together_.end(), size_t{0});
    journal_.restart();
    if (journal_.kept()) journal_.note(JournalEntry::Kind::Plan, 0, plan());
    return true;
}

BatchTotals ApplyProgress::totals() const {
    BatchTotals all = totals_;
    all.add(reports);
    return all;
}

std::string ApplyProgress::plan() const {
    Json items = Json::array();
    for (const BatchItem& item : items_)
        items.push_back({item.input.string(), item.output.string(), item.frame, item.frames});
    const InputList::Place place = parts_.place();
    return packed({{"items", items},
                   {"totals", {totals_.pictures, totals_.written, totals_.failed}},
                   {"place", {place.offset, place.unread}},
                   {"ledger", ledger_ ? ledger_->pictures() : 0}});
}

void ApplyProgress::readPlan(const std::string& text) {
    const Json json = unpacked(text);
    for (const Json& item : json["items"])
        items_.push_back({item[0].get<std::string>(), item[1].get<std::string>(), item[2], item[3]});
    reports.resize(items_.size());
    shown_.resize(items_.size());
    totals_ = {json["totals"][0], json["totals"][1], json["totals"][2]};
    parts_.continueAt({json["place"][0], json["place"][1]});
    if (ledger_) ledger_->continueWith(json["ledger"]);
}

void ApplyProgress::calledAll(size_t item, const PictureReport& report) const {
    if (journal_.kept()) journal_.note(JournalEntry::Kind::Report, item, packed(report));
}

void ApplyProgress::failed(size_t item, const PictureReport& report) const {
    if (journal_.kept()) journal_.note(JournalEntry::Kind::Failed, item, packed(report));
}

void ApplyProgress::showOnce(size_t item, const std::function<void()>& print) {
    if (shown_[item]) return;
    journal_.show(item, print);
    shown_[item] = 1;
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
        if (reports[i].settled())
            record(i);  // the crash may have been faster
        else
            (begun[i] ? alone_ : together_).push_back(i);
    if (alone_.empty()) throw CommandError("the program crashed: " + crashName(signal));
    journal_.note(JournalEntry::Kind::Restart, 0);
    if (alone_.size() > 1) return;
    const size_t cause = alone_.front();
    alone_.clear();
    reports[cause].failure =
        items_[cause].input.string() + ": the program crashed on this picture: " + crashName(signal);
    failed(cause, reports[cause]);
    record(cause);
}

void ApplyProgress::record(size_t item) const {
    if (ledger_) ledger_->note(items_[item], ApplyLedger::before(items_[item]), reports[item].failure);
}

void ApplyProgress::apply(const JournalEntry& entry, std::vector<bool>& begun) {
    switch (entry.kind) {
        case JournalEntry::Kind::Plan:
            readPlan(entry.text);
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
        case JournalEntry::Kind::Shown:
            shown_.at(entry.item) = 1;
            return;
        case JournalEntry::Kind::Crash:
            return;
    }
}

}  // namespace krl::player
