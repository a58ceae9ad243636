#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

#include "player/cli/CommandLine.h"
#include "player/pictures/AtomicFile.h"

namespace {

bool isTerminal(std::FILE* stream) {
#if defined(_WIN32)
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

/// Whether a progress bar may stand where the cursor is.
volatile std::sig_atomic_t barMayStand = 0;

/// Ends the program as the signal would have, with no half-written file left behind.
void endBySignal(int signal) {
    krl::player::removeUnfinishedFiles();
#if !defined(_WIN32)
    [[maybe_unused]] const auto written = barMayStand != 0 ? ::write(STDERR_FILENO, "\n", 1) : 0;
#endif
    std::_Exit(128 + signal);
}

constexpr int kEndingSignals[] = {
    SIGINT,
    SIGTERM,
#if !defined(_WIN32)
    SIGHUP,
#endif
};

void endCleanlyBySignals() {
    for (const int signal : kEndingSignals)
        // Whoever started the program in the background may have told it to ignore some.
        if (std::signal(signal, SIG_IGN) != SIG_IGN) std::signal(signal, endBySignal);
}

}  // namespace

int main(int count, char** words) {
    barMayStand = isTerminal(stderr);
    endCleanlyBySignals();
    std::ios::sync_with_stdio(false);
    if (isTerminal(stdout)) std::cout << std::unitbuf;
    const krl::player::Terminal terminal{std::cout, std::cerr, barMayStand != 0};
    const int code = krl::player::runCommandLine({words + 1, words + count}, terminal);
    if (std::cout.flush()) return code;
    std::cerr << "krlimage: cannot write to standard output\n";
    return 1;
}
