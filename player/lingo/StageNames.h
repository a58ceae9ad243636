#pragma once

#include <string>
#include <string_view>

/// Names of the language that only a stage, sound or a network could carry out.
namespace krl::player {

/// `a stage`, `sound` or `a network`; null for a name that needs none of them.
const char* neededBy(std::string_view name);

/// `this needs a stage, which krlimage does not have: sprite(5)`
std::string refusalOf(const char* need, std::string_view what);

}  // namespace krl::player
