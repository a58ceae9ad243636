#pragma once

#include "player/cli/BatchParts.h"
#include "player/pictures/PictureFiles.h"

namespace krl::player {

/// Prints how many pictures and pixels a batch has and how much memory it takes, from the headers of the
/// pictures. Returns the exit code: 1 if some cannot be read.
int printPlan(BatchParts& parts, const ApplyOptions& options, const WriteOptions& writing,
              const Terminal& terminal);

}  // namespace krl::player
