#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace krl {

/// The name most similar to `wanted`, ignoring case; empty if none is similar enough.
std::string nearestName(std::string_view wanted, const std::vector<std::string>& names);

/// `, did you mean brightness?`, or empty if no name is similar; appended to messages.
std::string didYouMean(std::string_view wanted, const std::vector<std::string>& names);

}  // namespace krl
