#include "player/cli/ApplyLedger.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "player/cli/LookFiles.h"
#include "player/pictures/AtomicFile.h"

namespace krl::player {

namespace fs = std::filesystem;

namespace {

Shard shardOrAll(const ApplyOptions& options) { return shardOf(options).value_or(Shard(1, 1)); }

/// Never 0.
uint64_t sourceHash(const FileState& state, const std::string& chain) {
    const std::string text = std::to_string(state.size) + ' ' + std::to_string(state.time) + ' ' + chain;
    return hashOf(text).low | 1;
}

void addTo(nlohmann::json& all, const Delivery& delivery) {
    const auto add = [&](const std::optional<DeliveryLength>& length) {
        if (length)
            all.push_back({length->number, length->isPercent});
        else
            all.push_back(nullptr);
    };
    const DeliveryCrop crop = delivery.crop.value_or(DeliveryCrop());
    const DeliverySize size = delivery.size.value_or(DeliverySize());
    all.push_back({delivery.degrees, delivery.crop.has_value(), delivery.size.has_value(), delivery.sizing});
    for (const auto& length : {std::optional(crop.width), std::optional(crop.height), crop.left, crop.top,
                               size.width, size.height})
        add(length);
}

}  // namespace

MadeBy::MadeBy(const ApplyOptions& options, const std::vector<MovingCall>& calls, const WriteOptions& writing)
    : moves_(moves(calls)) {
    nlohmann::json all = {KRL_VERSION,     options.settings,  options.format,      options.firstFrame,
                          writing.quality, writing.depth,     writing.compression, writing.chroma,
                          writing.profile, writing.isStripped};
    addTo(all, options.delivery);
    for (const std::string& look : options.looks) all.push_back(requireLook(look).text);
    for (const MovingCall& call : calls) all.push_back(call.text());
    if (moves_) all.push_back(options.fps);
    for (const fs::path& file : {options.session.xtraFile, fs::path(writing.profile)})
        if (const auto content = hashOfFile(file)) all.push_back(content->text());
    chain_ = hashOf(all.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)).text();
}

std::string MadeBy::chainOf(const BatchItem& item) const {
    if (!moves_) return chain_;
    return hashOf(chain_ + ' ' + std::to_string(item.frame) + ' ' + std::to_string(item.frames)).text();
}

RecordedResults::RecordedResults(const fs::path& output, const Shard& shard) {
    for (const LedgerFile& ledger : ledgersOf(output)) {
        // With as many shards, other shards have none of these pictures.
        if (ledger.shard.count() == shard.count() && ledger.shard.index() != shard.index()) continue;
        const LedgerFrame frame = readLedger(ledger.file, [&](LedgerEntry&& entry) {
            const bool isDone = entry.failure.empty();
            results_.push_back({hashOf(entry.name).low, entry.time,
                                isDone ? sourceHash(entry.source, entry.chain) : 0, entry.size});
        });
        if (!frame.pictures && frame.heading && !isBeingWritten(ledger.file))
            abandoned_.insert(frame.heading->mark);
    }
    std::stable_sort(results_.begin(), results_.end(), [](const Result& a, const Result& b) {
        return a.name != b.name ? a.name < b.name : a.time > b.time;
    });
    const auto older = std::unique(results_.begin(), results_.end(),
                                   [](const Result& a, const Result& b) { return a.name == b.name; });
    results_.erase(older, results_.end());
    results_.shrink_to_fit();
}

bool RecordedResults::has(const BatchItem& item, const std::string& name, const MadeBy& made) const {
    const uint64_t hash = hashOf(name).low;
    const auto found =
        std::lower_bound(results_.begin(), results_.end(), hash,
                         [](const Result& result, uint64_t wanted) { return result.name < wanted; });
    if (found == results_.end() || found->name != hash || found->source == 0) return false;
    const std::optional<FileState> source = stateOf(item.input);
    if (!source || sourceHash(*source, made.chainOf(item)) != found->source) return false;
    const std::optional<FileState> result = stateOf(item.output);
    return result && result->size == found->size;
}

ApplyLedger::ApplyLedger(const ApplyOptions& options, MadeBy made, std::string doing)
    : options_(options),
      made_(std::move(made)),
      recorded_(options.resume ? std::make_unique<RecordedResults>(outputFolder(options), shardOrAll(options))
                               : nullptr),
      doing_(std::move(doing)) {}

void ApplyLedger::open() {
    if (writer_) return writer_->flush();
    const LedgerHeading heading{doing_, made_.chain(), shardOrAll(options_), AtomicFile::mark(), 0};
    writer_ = std::make_unique<LedgerWriter>(outputFolder(options_), heading);
}

void ApplyLedger::continueWith(size_t pictures) {
    pictures_ = pictures;
    open();
}

void ApplyLedger::leaveOutDone(std::vector<BatchItem>& items, std::vector<std::string>& notes) {
    open();
    const size_t all = items.size();
    pictures_ += all;
    if (!recorded_) return;
    removeAbandoned(items, notes);
    std::erase_if(items, [&](const BatchItem& item) {
        return recorded_->has(item, nameBelowOutput(item.output, options_), made_);
    });
    if (items.size() < all)
        notes.push_back("skipped " + std::to_string(all - items.size()) + " of " + std::to_string(all) +
                        " pictures, which are done");
}

void ApplyLedger::removeAbandoned(const std::vector<BatchItem>& items, std::vector<std::string>& notes) {
    if (recorded_->abandoned().empty()) return;
    for (const BatchItem& item : items) {
        const fs::path folder = item.output.parent_path();
        if (!cleaned_.insert(folder).second) continue;
        std::error_code failed;
        for (const auto& entry : fs::directory_iterator(folder, failed)) {
            const std::string name = entry.path().filename().string();
            const std::string mark = name.substr(0, name.find('_'));
            if (recorded_->abandoned().count(mark) == 0) continue;
            if (fs::remove(entry.path(), failed))
                notes.push_back("removed " + entry.path().string() +
                                ", which a killed process left unfinished");
        }
    }
}

FileState ApplyLedger::before(const BatchItem& item) { return stateOf(item.input).value_or(FileState()); }

void ApplyLedger::note(const BatchItem& item, const FileState& source, const std::string& failure) {
    LedgerEntry entry;
    entry.name = nameBelowOutput(item.output, options_);
    entry.input = item.input.string();
    entry.failure = failure;
    entry.chain = made_.chainOf(item);
    entry.source = source;
    if (failure.empty()) {
        const auto result = stateOf(item.output);
        const auto hash = hashOfFile(item.output);
        if (!result || !hash) return;  // removed since; a later run makes it again
        entry.size = result->size;
        entry.hash = hash->text();
    }
    writer_->note(std::move(entry));
}

std::string ApplyLedger::finish(bool isThrough) {
    if (!writer_) return "";
    return writer_->finish(isThrough ? std::optional(pictures_) : std::nullopt);
}

}  // namespace krl::player
