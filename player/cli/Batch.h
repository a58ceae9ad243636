#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "player/cli/Commands.h"
#include "player/cli/Shard.h"

namespace krl::player {

/// A picture to read and the file to write it to.
struct BatchItem {
    std::filesystem::path input;
    std::filesystem::path output;
    size_t frame = 0, frames = 1;  ///< its place among all that there are, done or not
};

/// Inputs that are planned together.
struct BatchPart {
    std::vector<std::filesystem::path> named;   ///< pictures, and folders of pictures
    std::vector<std::filesystem::path> listed;  ///< the same, from a list
    bool isOneOfSeveral = false;                ///< whether there may be other parts
    std::vector<std::string> notes = {};        ///< a line for each picture that is left out
};

/// Pairs pictures, and those in folders, with their outputs, and makes the folders for these unless it is a
/// dry run. Throws `UsageError` if two would be written to the same file or one over an input that is to be
/// kept, and `CommandError` for a folder without pictures. `notes` receives a line for each one that is left
/// out.
std::vector<BatchItem> planBatch(const BatchPart& part, const ApplyOptions& options,
                                 std::vector<std::string>* notes = nullptr);

/// The folder of several outputs: `-o`, or where its numbered frames are.
std::filesystem::path outputFolder(const ApplyOptions& options);
/// Where the output of a listed picture is in the output folder.
std::string outputName(const std::filesystem::path& input, const ApplyOptions& options);
/// The same of an output that is paired.
std::string nameBelowOutput(const std::filesystem::path& output, const ApplyOptions& options);

/// The share of the batch that is asked for, if one is. Throws `UsageError`.
std::optional<Shard> shardOf(const ApplyOptions& options);
/// How many shards to plan at once, for `all/N`. Throws `UsageError` if nothing is only planned.
std::optional<uint32_t> countOfAllShards(const ApplyOptions& options);

/// Whether a name is that of standard input or output, `-`.
bool isStandardStream(const std::filesystem::path& path);

}  // namespace krl::player
