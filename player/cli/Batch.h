#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "player/cli/Commands.h"

namespace krl::player {

/// A picture to read and the file to write it to.
struct BatchItem {
    std::filesystem::path input;
    std::filesystem::path output;
};

/// Pairs pictures, and those in folders, with their outputs. Throws `UsageError` if two would be
/// written to the same file, and `CommandError` for a folder without pictures.
std::vector<BatchItem> planBatch(const std::vector<std::filesystem::path>& inputs,
                                 const ApplyOptions& options);

}  // namespace krl::player
