#pragma once

#include <string>
#include <vector>

#include "player/cli/ChainCall.h"

namespace krl::player {

/// A chain of calls as a script that applies them to the picture named by its first argument and saves
/// the result as its second. Omitted points default to those for a picture of this size.
std::string chainScript(const std::vector<ChainCall>& chain, int32_t width = 960, int32_t height = 640);

/// The lines that make a call, which `lingo` writes, each after `indent`.
std::string callLines(const Method& method, const std::string& lingo, const std::string& indent);

}  // namespace krl::player
