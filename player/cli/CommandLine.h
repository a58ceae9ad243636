#pragma once

#include <string>
#include <vector>

#include "player/cli/Commands.h"

namespace krl::player {

/// Runs the command given by the words after the program's name and returns the exit code: 0 for success,
/// 1 for a failure, 2 for invalid usage.
int runCommandLine(const std::vector<std::string>& words, const Terminal& terminal);

}  // namespace krl::player
