#pragma once

#include <string>

#include "krlimage.h"

/// What editors of films read about a module beside what it says itself.
namespace krl::frei0r {

/// The size for which examples stand in descriptions.
constexpr int kUsualWidth = 960, kUsualHeight = 640;

/// For Kdenlive, which makes a dialog of it; `tag` is `effect` or `transition`. Numbers have the method's own
/// scale where that begins at 0. Lists and places have no field there, and keep the example.
std::string kdenliveDescription(const krl_method_info& method, const char* tag);

/// For MLT, in YAML; `type` is `filter`, `transition` or `producer`.
std::string mltDescription(const krl_method_info& method, const char* type);

}  // namespace krl::frei0r
