#pragma once

#include <string>
#include <vector>

#include "player/cli/ApplyProgress.h"
#include "player/cli/Commands.h"

namespace krl::player {

/// Prints lines of `krlimage: note: `.
void showNotes(const std::vector<std::string>& notes, const Terminal& terminal);

/// Prints the results and returns the exit code. If memory runs out meanwhile, it still reports how many
/// pictures were written.
int showOutcome(const std::vector<BatchItem>& items, const std::vector<PictureReport>& reports, bool json,
                const Terminal& terminal);

}  // namespace krl::player
