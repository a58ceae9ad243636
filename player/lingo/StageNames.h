#pragma once

#include <string>
#include <string_view>

/// Names of the language that only a stage, sound or a network could carry out.
namespace krl::player {

/// `a stage`, `sound`, `preferences`, `a network` or `other xtras`; null for a name that needs none of them.
const char* neededBy(std::string_view name);

/// Whether it is a property of sprites, such as `loc`, or of members with a layout, such as `fontSize`.
bool isOfStageObjects(std::string_view name);

/// `this needs a stage, which krlimage does not have: sprite(5)`
std::string refusalOf(const char* need, std::string_view what);

}  // namespace krl::player
