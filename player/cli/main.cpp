#include <csignal>
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

bool errorIsTerminal() {
#if defined(_WIN32)
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

/// Ends the program as the signal would have, with no half-written file left behind.
void endBySignal(int signal) {
    krl::player::removeUnfinishedFiles();
    std::_Exit(128 + signal);
}

}  // namespace

int main(int count, char** words) {
    std::signal(SIGINT, endBySignal);
    std::signal(SIGTERM, endBySignal);
    std::ios::sync_with_stdio(false);
    const krl::player::Terminal terminal{std::cout, std::cerr, errorIsTerminal()};
    const int code = krl::player::runCommandLine({words + 1, words + count}, terminal);
    std::cout.flush();
    return std::cout ? code : 1;
}
