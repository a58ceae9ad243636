#pragma once

#include <string>

namespace krl::bindings {

/// A name of the catalogue in words, for people: `Hue shift` of `hueShift`.
std::string titleOf(const char* name);

}  // namespace krl::bindings
