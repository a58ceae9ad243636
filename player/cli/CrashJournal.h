#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Libraries for pictures end the program where they run out of memory or a file leads them astray. A
/// batch outlives that: the program starts itself anew in its own place, reads in a journal how far it
/// was, fails the picture that it crashed on and goes on with the rest. Where pictures were worked on
/// side by side, each of them is tried alone first.
namespace krl::player {

/// From now on a crash leaves no half-written file, and restarts a program that keeps a journal.
/// `words` are those of `main`, and stay.
void surviveCrashes(char** words);

/// What a signal is called: `Aborted`.
std::string crashName(int signal);

/// What a program that crashed told of its work, in the order in which it was told.
struct JournalEntry {
    enum class Kind : uint32_t { Plan, Begun, Report, Failed, Written, Crash, Restart };
    Kind kind;
    size_t item = 0;  ///< of a crash, the signal
    std::string text;
};

/// Lives as long as the work; keeps nothing where crashes are not survived.
class CrashJournal {
public:
    /// Goes on with the journal of the crashed program that this one replaces, if any.
    CrashJournal();
    ~CrashJournal();
    CrashJournal(const CrashJournal&) = delete;
    CrashJournal& operator=(const CrashJournal&) = delete;

    /// Empty unless the program is a restarted one.
    std::span<const JournalEntry> past() const { return past_; }
    /// Whether notes are kept at all.
    bool kept() const;
    /// From any thread; takes no memory.
    void note(JournalEntry::Kind kind, size_t item, const std::string& text = "") const noexcept;

private:
    void readPast();

    std::vector<JournalEntry> past_;
};

}  // namespace krl::player
