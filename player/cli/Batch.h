#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "player/cli/Commands.h"

namespace krl::player {

/// A picture to read, and where it goes when it is done.
struct BatchItem {
    std::filesystem::path input;
    std::filesystem::path output;
};

/// Pairs pictures, and those in folders, with their outputs. Throws `UsageError` where two would be
/// written to one place, and `CommandError` for a folder without pictures.
std::vector<BatchItem> planBatch(const std::vector<std::filesystem::path>& inputs,
                                 const ApplyOptions& options);

}  // namespace krl::player
