#pragma once

#include <filesystem>

namespace krl::player {

/// The folder of the user's looks and settings, `~/.config/krlimage`; empty where there is no home.
std::filesystem::path userFolder();

}  // namespace krl::player
