#pragma once

#include "player/cli/Commands.h"

namespace krl::player {

struct LedgerOptions {
    std::string action;
    std::filesystem::path output;
    bool json = false;
};
/// Says what became of the pictures of a batch; the exit code is 1 unless all are done.
int inspectLedger(const LedgerOptions& options, const Terminal& terminal);

}  // namespace krl::player
