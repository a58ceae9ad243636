#pragma once

#include <filesystem>
#include <string>

namespace krl::player {

/// Makes a folder, and those above it, where it is missing. Throws `CommandError`.
void makeFolder(const std::filesystem::path& folder);

/// Writes a text file, whole or not at all, in a folder that is made when it is missing. Throws
/// `CommandError`.
void writeText(const std::filesystem::path& path, const std::string& text);

}  // namespace krl::player
