#pragma once

#include <string>
#include <vector>

#include "player/cli/BatchParts.h"
#include "player/cli/CrashJournal.h"
#include "player/lingo/Session.h"

namespace krl::player {

/// One call on one picture, with its outcome.
struct CallReport {
    std::string call;
    CallOutcome outcome;
    /// Whether the result says more than success or a new picture.
    bool telling = false;
    double milliseconds = 0;  ///< on all pages or frames
};

/// The outcome for one picture.
struct PictureReport {
    std::vector<CallReport> calls;
    bool written = false;
    std::vector<std::string> notes;  ///< what else is worth knowing, a line each
    std::string failure;             ///< one line; empty for a picture that was written
    double reading = 0;              ///< milliseconds
    /// Milliseconds to resize, convert and write; 0 if a crash came right after.
    double writing = 0;

    bool settled() const { return written || !failure.empty(); }
};

/// What became of the pictures of several parts.
struct BatchTotals {
    size_t pictures = 0, written = 0, failed = 0;

    void add(const std::vector<PictureReport>& reports);
    size_t unsettled() const { return pictures - written - failed; }
};

class ApplyLedger;

/// The pictures of a part of a batch and their progress, which survives a crash.
class ApplyProgress {
public:
    /// `ledger` may be null.
    ApplyProgress(BatchParts& parts, const ApplyOptions& options, ApplyLedger* ledger)
        : parts_(parts), options_(options), ledger_(ledger) {}

    /// Plans the next part, or resumes that of a program that crashed; false if there is none.
    bool next();

    /// Whether this program replaces one that crashed.
    bool isContinued() const { return !journal_.past().empty(); }
    /// What became of all parts up to this one.
    BatchTotals totals() const;
    const std::vector<BatchItem>& items() const { return items_; }
    /// What the plan leaves out, a line each.
    const std::vector<std::string>& notes() const { return notes_; }
    /// Pictures not yet settled: those to process alone, one after another, and the others.
    const std::vector<size_t>& alone() const { return alone_; }
    const std::vector<size_t>& together() const { return together_; }

    // Notes for a restart after a crash, made by the thread that processes the picture.
    void begin(size_t item) const { journal_.note(JournalEntry::Kind::Begun, item); }
    void calledAll(size_t item, const PictureReport& report) const;
    void written(size_t item) const noexcept { journal_.note(JournalEntry::Kind::Written, item); }
    void failed(size_t item, const PictureReport& report) const;

    /// Calls `print` unless this or a crashed program did for this picture. Can be called from any thread.
    void showOnce(size_t item, const std::function<void()>& print);

    std::vector<PictureReport> reports;

private:
    void resume();
    void apply(const JournalEntry& entry, std::vector<bool>& begun);

    void record(size_t item) const;
    void readPlan(const std::string& text);
    std::string plan() const;

    BatchParts& parts_;
    const ApplyOptions& options_;
    ApplyLedger* ledger_;
    BatchTotals totals_;  ///< of the parts before this one
    CrashJournal journal_;
    std::vector<BatchItem> items_;
    std::vector<std::string> notes_;
    std::vector<size_t> alone_, together_;
    std::vector<char> shown_;  ///< for each item; written by several threads
};

}  // namespace krl::player
