#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace krl::player {

/// The name that `wanted` was most likely meant to be, letter case aside; empty when none is near.
std::string nearestName(std::string_view wanted, const std::vector<std::string>& names);

/// `, did you mean brightness?`, or nothing when no name is near; to end a message with.
std::string didYouMean(std::string_view wanted, const std::vector<std::string>& names);

}  // namespace krl::player
