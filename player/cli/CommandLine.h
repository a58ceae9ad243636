#pragma once

#include <string>
#include <vector>

#include "player/cli/Commands.h"

namespace krl::player {

/// Does what the words after the program's name ask for and returns the exit code: 0, 1 for what
/// failed, 2 for a command line that makes no sense.
int runCommandLine(const std::vector<std::string>& words, const Terminal& terminal);

}  // namespace krl::player
