#include "player/cli/CrashJournal.h"

#if defined(__linux__)
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/uio.h>
#include <unistd.h>
#endif

#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "player/pictures/AtomicFile.h"

namespace krl::player {

#if defined(__linux__)

namespace {

constexpr const char* kVariable = "KRLIMAGE_JOURNAL";
constexpr const char* kFileName = "krlimage-journal";

/// The header of a note.
struct Head {
    uint32_t mark;
    uint32_t kind;
    uint32_t item;
    uint32_t bytes;
};
constexpr uint32_t kMark = 0x6B726C6A;

char** mainWords = nullptr;
std::atomic<int> journal = -1;
std::atomic<bool> crashing = false;

constexpr int kCrashes[] = {SIGABRT, SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP};

std::atomic_flag showing = ATOMIC_FLAG_INIT;

/// Waits until no other thread prints what it notes.
void beginShowing() noexcept {
    constexpr timespec pause{0, 1'000'000};
    while (showing.test_and_set(std::memory_order_acquire)) ::nanosleep(&pause, nullptr);
}

/// Holds off a crash. Signals that end the program still do, so that a reader that stalls cannot stop them.
class ShowGuard {
public:
    ShowGuard() {
        sigset_t crashes;
        sigemptyset(&crashes);
        for (const int signal : kCrashes) sigaddset(&crashes, signal);
        pthread_sigmask(SIG_BLOCK, &crashes, &before_);
        beginShowing();
    }
    ~ShowGuard() {
        showing.clear(std::memory_order_release);
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    ShowGuard(const ShowGuard&) = delete;
    ShowGuard& operator=(const ShowGuard&) = delete;

private:
    sigset_t before_{};
};

void append(Head head, const char* text) noexcept {
    const int file = journal;
    if (file < 0) return;
    iovec parts[] = {{&head, sizeof(head)}, {const_cast<char*>(text), head.bytes}};
    const auto whole = static_cast<ssize_t>(sizeof(head) + head.bytes);
    // A restart without this note would repeat work, so give up on restarting.
    if (::writev(file, parts, 2) != whole) journal = -1;
}

/// Makes only system calls, since memory may be corrupt.
void endByCrash(int signal) {
    crashing = true;
    beginShowing();
    removeUnfinishedFiles();
    append({kMark, static_cast<uint32_t>(JournalEntry::Kind::Crash), static_cast<uint32_t>(signal), 0}, "");
    if (journal >= 0) {
        ::fcntl(journal, F_SETFD, 0);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        ::execve("/proc/self/exe", mainWords, environ);
    }
    std::signal(signal, SIG_DFL);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, signal);
    sigprocmask(SIG_UNBLOCK, &only, nullptr);
    ::raise(signal);
}

/// The file descriptor of the journal named by the environment variable, or -1.
int inheritedJournal() {
    const char* number = std::getenv(kVariable);
    if (!number) return -1;
    const int file = std::atoi(number);
    ::unsetenv(kVariable);
    char name[64] = {};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    if (::readlink(link.c_str(), name, sizeof(name) - 1) < 0) return -1;
    if (std::strstr(name, kFileName) == nullptr) return -1;
    ::fcntl(file, F_SETFD, FD_CLOEXEC);
    return file;
}

}  // namespace

void surviveCrashes(char** words) {
    mainWords = words;
    struct sigaction ending {};
    ending.sa_handler = endByCrash;
    sigfillset(&ending.sa_mask);
    for (const int signal : kCrashes) sigaction(signal, &ending, nullptr);
}

std::string crashName(int signal) { return strsignal(signal); }

CrashJournal::CrashJournal() {
    if (!mainWords) return;
    int file = inheritedJournal();
    if (file >= 0) {
        journal = file;
        readPast();
    } else {
        file = ::memfd_create(kFileName, MFD_CLOEXEC);
        if (file < 0) return;
        ::fcntl(file, F_SETFL, O_APPEND);
        journal = file;
    }
    ::setenv(kVariable, std::to_string(file).c_str(), 1);
}

CrashJournal::~CrashJournal() {
    if (!mainWords) return;
    ::unsetenv(kVariable);
    if (const int file = journal.exchange(-1); file >= 0) ::close(file);
}

bool CrashJournal::kept() const { return journal >= 0; }

void CrashJournal::restart() {
    past_.clear();
    if (journal >= 0 && ::ftruncate(journal, 0) != 0) journal = -1;
}

void CrashJournal::note(JournalEntry::Kind kind, size_t item, const std::string& text) const noexcept {
    // A program that is being replaced can start no threads: what fails then is no fault of the picture,
    // which the next program tries again.
    while (kind == JournalEntry::Kind::Failed && crashing) ::pause();
    append(
        {kMark, static_cast<uint32_t>(kind), static_cast<uint32_t>(item), static_cast<uint32_t>(text.size())},
        text.data());
}

void CrashJournal::show(size_t item, const std::function<void()>& print) const {
    const ShowGuard guard;
    print();
    note(JournalEntry::Kind::Shown, item);
}

/// Reads up to the first incomplete note, which the crash interrupted.
void CrashJournal::readPast() {
    const int file = journal;
    off_t place = 0;
    Head head{};
    while (::pread(file, &head, sizeof(head), place) == sizeof(head) && head.mark == kMark) {
        JournalEntry entry{static_cast<JournalEntry::Kind>(head.kind), head.item,
                           std::string(head.bytes, '\0')};
        const auto text = place + static_cast<off_t>(sizeof(head));
        if (::pread(file, entry.text.data(), head.bytes, text) != static_cast<ssize_t>(head.bytes)) break;
        place = text + static_cast<off_t>(head.bytes);
        past_.push_back(std::move(entry));
    }
    if (::ftruncate(file, place) != 0) journal = -1;
}

#else

void surviveCrashes(char**) {}
std::string crashName(int) { return "a crash"; }
CrashJournal::CrashJournal() = default;
CrashJournal::~CrashJournal() = default;
bool CrashJournal::kept() const { return false; }
void CrashJournal::restart() {}
void CrashJournal::note(JournalEntry::Kind, size_t, const std::string&) const noexcept {}
void CrashJournal::show(size_t, const std::function<void()>& print) const { print(); }
void CrashJournal::readPast() {}

#endif

}  // namespace krl::player
