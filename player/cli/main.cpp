#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>

#if defined(_WIN32)
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

#include "player/cli/CommandLine.h"
#include "player/cli/CrashJournal.h"
#include "player/pictures/AtomicFile.h"

namespace {

bool isTerminal(std::FILE* stream) {
#if defined(_WIN32)
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

/// The size of the terminal that standard output is, if it is one.
krl::player::TerminalSize terminalSize() {
    constexpr int usualColumns = 80, usualRows = 24;
    if (!isTerminal(stdout)) return {};
    krl::player::TerminalSize size{usualColumns, usualRows};
#if defined(_WIN32)
    CONSOLE_SCREEN_BUFFER_INFO info{};
    HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
    if (!GetConsoleScreenBufferInfo(console, &info)) return size;
    size.columns = info.srWindow.Right - info.srWindow.Left + 1;
    size.rows = info.srWindow.Bottom - info.srWindow.Top + 1;
#else
    winsize window{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0 || window.ws_col == 0 || window.ws_row == 0)
        return size;
    size = {window.ws_col, window.ws_row, window.ws_xpixel / window.ws_col, window.ws_ypixel / window.ws_row};
#endif
    return size;
}

/// Whether the cursor may be at the end of a progress bar.
volatile std::sig_atomic_t barMayStand = 0;

/// Ends the program as the signal would, but removes half-written files first.
void endBySignal(int signal) {
    krl::player::removeUnfinishedFiles();
#if !defined(_WIN32)
    [[maybe_unused]] const auto written = barMayStand != 0 ? ::write(STDERR_FILENO, "\n", 1) : 0;
#endif
    std::_Exit(128 + signal);
}

#if defined(_WIN32)
void endCleanlyBySignals() {
    for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, endBySignal);
}
#else
void endCleanlyBySignals() {
    struct sigaction ending {};
    ending.sa_handler = endBySignal;
    sigfillset(&ending.sa_mask);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        // The parent process, such as nohup, may have set some to be ignored.
        if (before.sa_handler != SIG_IGN) sigaction(signal, &ending, nullptr);
    }
    // Exceeding the file size limit is then reported as a write error.
    std::signal(SIGXFSZ, SIG_IGN);
}
#endif

int run(int count, char** words) {
    std::ios::sync_with_stdio(false);
    if (isTerminal(stdout)) std::cout << std::unitbuf;
    const krl::player::Terminal terminal{std::cout, std::cerr, barMayStand != 0, terminalSize()};
    const int code = krl::player::runCommandLine({words + 1, words + count}, terminal);
    if (std::cout.flush()) return code;
    std::cerr << "krlimage: cannot write to standard output\n";
    return 1;
}

}  // namespace

int main(int count, char** words) {
    barMayStand = isTerminal(stderr);
    endCleanlyBySignals();
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    krl::player::surviveCrashes(words);
#endif
    try {
        return run(count, words);
    } catch (const std::bad_alloc&) {
        std::fputs("krlimage: out of memory\n", stderr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "krlimage: %s\n", error.what());
    }
    return 1;
}
