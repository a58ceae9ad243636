#pragma once

#include <filesystem>
#include <string>

namespace krl::player {

/// Creates a folder and its parents if they are missing. Throws `CommandError`.
void makeFolder(const std::filesystem::path& folder);

/// Writes a text file atomically and creates its folder if it is missing. Throws `CommandError`.
void writeText(const std::filesystem::path& path, const std::string& text);

/// The content of a text file. Throws `CommandError`.
std::string readText(const std::filesystem::path& path);

}  // namespace krl::player
