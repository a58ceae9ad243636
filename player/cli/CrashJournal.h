#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

/// Image libraries may abort the program when they run out of memory or hit a malformed file. A batch
/// survives that: the program re-executes itself, reads its progress from a journal, marks the picture
/// that it crashed on as failed and continues with the rest. If several pictures were in progress, each
/// of them is retried alone first.
namespace krl::player {

/// From now on a crash leaves no half-written file, and restarts a program that keeps a journal.
/// `words` are the arguments of `main` and must stay valid.
void surviveCrashes(char** words);

/// The name of a signal: `Aborted`.
std::string crashName(int signal);

/// A note about the progress of a program that crashed, in the order of writing.
struct JournalEntry {
    enum class Kind : uint32_t { Plan, Begun, Report, Failed, Written, Crash, Restart, Shown };
    Kind kind;
    size_t item = 0;  ///< for a crash, the signal
    std::string text;
};

/// Lives as long as the batch; does nothing on platforms without crash recovery.
class CrashJournal {
public:
    /// Continues the journal of the crashed program that this one replaces, if any.
    CrashJournal();
    ~CrashJournal();
    CrashJournal(const CrashJournal&) = delete;
    CrashJournal& operator=(const CrashJournal&) = delete;

    /// Empty unless the program was restarted.
    std::span<const JournalEntry> past() const { return past_; }
    /// Whether notes are recorded at all.
    bool kept() const;
    /// Forgets everything, for the next part of a batch.
    void restart();
    /// Can be called from any thread; allocates nothing.
    void note(JournalEntry::Kind kind, size_t item, const std::string& text = "") const noexcept;
    /// Calls `print` and notes that its output is out. A crash in another thread waits for both.
    void show(size_t item, const std::function<void()>& print) const;

private:
    void readPast();

    std::vector<JournalEntry> past_;
};

}  // namespace krl::player
