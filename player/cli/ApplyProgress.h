#pragma once

#include <string>
#include <vector>

#include "player/cli/Batch.h"
#include "player/cli/CrashJournal.h"
#include "player/lingo/Session.h"

namespace krl::player {

/// One call on one picture, with its outcome.
struct CallReport {
    std::string call;
    CallOutcome outcome;
    /// Whether the result says more than success or a new picture.
    bool telling = false;
};

/// The outcome for one picture.
struct PictureReport {
    std::vector<CallReport> calls;
    bool written = false;
    std::vector<std::string> notes;  ///< what else is worth knowing, a line each
    std::string failure;             ///< one line; empty for a picture that was written

    bool settled() const { return written || !failure.empty(); }
};

/// The pictures of a batch and their progress, which survives a crash.
class ApplyProgress {
public:
    /// Plans the batch, or resumes the batch of a program that crashed.
    ApplyProgress(const std::vector<std::filesystem::path>& inputs, const ApplyOptions& options);

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

    std::vector<PictureReport> reports;

private:
    void resume();
    void apply(const JournalEntry& entry, std::vector<bool>& begun);

    CrashJournal journal_;
    std::vector<BatchItem> items_;
    std::vector<std::string> notes_;
    std::vector<size_t> alone_, together_;
};

}  // namespace krl::player
