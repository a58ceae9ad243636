#pragma once

#include <string>
#include <vector>

#include "player/cli/ChainCall.h"

namespace krl::player {

/// A chain of calls as a script that does the same to the picture of its first argument and saves
/// it as its second. Places that were left out are those of a picture of this size.
std::string chainScript(const std::vector<ChainCall>& chain, int32_t width = 960, int32_t height = 640);

}  // namespace krl::player
