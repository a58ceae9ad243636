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

/// Pairs pictures, and those in folders, with their outputs, and makes the folders for these unless it is a
/// dry run. Throws `UsageError` if two would be written to the same file or one over an input that is to be
/// kept, and `CommandError` for a folder without pictures. `notes` receives a line for each one that is left
/// out.
std::vector<BatchItem> planBatch(const std::vector<std::filesystem::path>& inputs,
                                 const ApplyOptions& options, std::vector<std::string>* notes = nullptr);

/// Whether a name is that of standard input or output, `-`.
bool isStandardStream(const std::filesystem::path& path);

}  // namespace krl::player
