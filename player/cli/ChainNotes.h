#pragma once

#include <string>
#include <vector>

#include "player/cli/ChainCall.h"

namespace krl::player {

/// What is unusual about evaluated calls, a line each: numbers outside of their sensible ranges, and methods
/// that do nothing.
std::vector<std::string> notesOn(const std::vector<ChainCall>& chain);

}  // namespace krl::player
