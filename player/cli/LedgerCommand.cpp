#include "player/cli/LedgerCommand.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>

#include "player/cli/Ledger.h"

namespace krl::player {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

/// A picture that is not there as it should be.
struct Problem {
    const char* kind;  ///< `failed`, `missing` or `changed`
    LedgerEntry entry;
    std::string why;
};

/// What all ledgers of a folder say together.
class Ledgers {
public:
    explicit Ledgers(const fs::path& output) : output_(output), files_(ledgersOf(output)) {
        if (files_.empty()) throw CommandError("there is no ledger in " + output.string());
        for (const LedgerFile& ledger : files_) {
            const LedgerFrame frame = readLedger(ledger.file, [&](LedgerEntry&& entry) {
                newest_.push_back({hashOf(entry.name).low, entry.time});
            });
            note(ledger, frame);
        }
        keepNewest();
        findUnfinishedShards();
    }

    /// Checks every picture's newest entry, and its file if that is asked for.
    void check(bool opensFiles) {
        for (const LedgerFile& ledger : files_)
            readLedger(ledger.file, [&](LedgerEntry&& entry) {
                if (takeNewest(entry)) check(std::move(entry), opensFiles);
            });
        std::sort(problems_.begin(), problems_.end(),
                  [](const Problem& a, const Problem& b) { return a.entry.name < b.entry.name; });
    }

    bool isWhole() const { return problems_.empty() && unfinished_.empty() && unrecorded() == 0; }

    void show(const Terminal& terminal) const {
        for (const Problem& problem : problems_)
            terminal.out << problem.kind << "  " << problem.entry.name << ": " << problem.why << '\n';
        for (const std::string& shard : unfinished_)
            terminal.out << "unfinished  shard " << shard << ": no process came to its end\n";
        if (unrecorded() > 0)
            terminal.out << "unrecorded  " << unrecorded() << " pictures that were found are in no ledger\n";
        terminal.out << newest_.size() << " pictures: " << done_ << " done";
        for (const char* kind : {"failed", "missing", "changed"})
            terminal.out << ", " << countOf(kind) << ' ' << kind;
        terminal.out << '\n';
    }

    void showJson(const Terminal& terminal) const {
        Json json = {{"ok", isWhole()}, {"pictures", newest_.size()}, {"done", done_}};
        for (const char* kind : {"failed", "missing", "changed"}) json[kind] = listOf(kind);
        json["unfinishedShards"] = unfinished_;
        json["unrecorded"] = unrecorded();
        terminal.out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    }

private:
    struct Newest {
        uint64_t name;
        int64_t time;
        bool isTaken = false;
    };

    /// The newest ledger of a shard.
    struct Run {
        int64_t time = 0;
        std::optional<uint64_t> pictures;
    };

    void note(const LedgerFile& ledger, const LedgerFrame& frame) {
        if (!frame.heading) return;
        Run& run = runs_[ledger.shard.count()][ledger.shard.index()];
        if (frame.heading->time >= run.time) run = {frame.heading->time, frame.pictures};
        if (frame.heading->time < newestRun_) return;
        newestRun_ = frame.heading->time;
        shards_ = ledger.shard.count();
    }

    void keepNewest() {
        std::sort(newest_.begin(), newest_.end(), [](const Newest& a, const Newest& b) {
            return a.name != b.name ? a.name < b.name : a.time > b.time;
        });
        newest_.erase(std::unique(newest_.begin(), newest_.end(),
                                  [](const Newest& a, const Newest& b) { return a.name == b.name; }),
                      newest_.end());
    }

    /// The batch is divided as its newest run says: every shard of that many must have come to its end.
    void findUnfinishedShards() {
        const std::map<uint32_t, Run>& runs = runs_[shards_];
        for (uint32_t i = 1; i <= shards_; ++i) {
            const auto run = runs.find(i);
            if (run != runs.end() && run->second.pictures)
                expected_ += *run->second.pictures;
            else
                unfinished_.push_back(Shard(i, shards_).text());
        }
    }

    uint64_t unrecorded() const { return expected_ > newest_.size() ? expected_ - newest_.size() : 0; }

    bool takeNewest(const LedgerEntry& entry) {
        const uint64_t name = hashOf(entry.name).low;
        const auto found =
            std::lower_bound(newest_.begin(), newest_.end(), name,
                             [](const Newest& one, uint64_t wanted) { return one.name < wanted; });
        if (found->time != entry.time || found->isTaken) return false;
        return found->isTaken = true;
    }

    void check(LedgerEntry&& entry, bool opensFiles) {
        const auto [kind, why] = problemOf(entry, opensFiles);
        if (kind)
            problems_.push_back({kind, std::move(entry), why});
        else
            ++done_;
    }

    std::pair<const char*, std::string> problemOf(const LedgerEntry& entry, bool opensFiles) const {
        if (!entry.failure.empty()) return {"failed", entry.failure};
        if (!opensFiles) return {nullptr, ""};
        const fs::path file = output_ / entry.name;
        const std::optional<FileState> state = stateOf(file);
        if (!state) return {"missing", "made of " + entry.input};
        if (state->size != entry.size)
            return {"changed", "it has " + std::to_string(state->size) + " bytes, expected " +
                                   std::to_string(entry.size)};
        const std::optional<ContentHash> hash = hashOfFile(file);
        if (!hash) return {"changed", "it cannot be read"};
        if (hash->text() != entry.hash) return {"changed", "it has other content than recorded"};
        return {nullptr, ""};
    }

    size_t countOf(std::string_view kind) const {
        return static_cast<size_t>(
            std::count_if(problems_.begin(), problems_.end(),
                          [&](const Problem& problem) { return problem.kind == kind; }));
    }

    Json listOf(std::string_view kind) const {
        Json list = Json::array();
        for (const Problem& problem : problems_)
            if (problem.kind == kind)
                list.push_back(
                    {{"name", problem.entry.name}, {"input", problem.entry.input}, {"reason", problem.why}});
        return list;
    }

    const fs::path& output_;
    std::vector<LedgerFile> files_;
    std::vector<Newest> newest_;  ///< by the hashes of the pictures' names
    std::map<uint32_t, std::map<uint32_t, Run>> runs_;
    int64_t newestRun_ = 0;
    uint32_t shards_ = 1;  ///< of the newest run
    std::vector<std::string> unfinished_;
    std::vector<Problem> problems_;
    size_t done_ = 0;
    uint64_t expected_ = 0;
};

}  // namespace

int inspectLedger(const LedgerOptions& options, const Terminal& terminal) {
    Ledgers ledgers(options.output);
    ledgers.check(options.action == "verify");
    if (options.json)
        ledgers.showJson(terminal);
    else
        ledgers.show(terminal);
    return ledgers.isWhole() ? 0 : 1;
}

}  // namespace krl::player
