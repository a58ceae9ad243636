#pragma once

#include <string>
#include <vector>

#include "player/cli/MovingChain.h"
#include "player/cli/Sequence.h"

namespace krl::player {

/// Calls on the frames of a sequence as a script that does the same. `first` has the calls at the first
/// frame, and is for a picture of the size in `facts`.
std::string loopScript(const std::vector<MovingCall>& calls, const std::vector<ChainCall>& first,
                       const Sequence& input, const Sequence& output, const FrameFacts& facts);

}  // namespace krl::player
