#pragma once

#include <vector>

#include "catalogue/Choices.h"
#include "krlimage/key.h"

/// Words and symbols that the keys share.
namespace krl {

/// With a matte that is 255 on the backing.
inline constexpr const char* kInvertBackingMeaning =
    "with keep, false clears the backing and true all but the backing";
/// With a matte that is 0 on the key.
inline constexpr const char* kInvertKeyMeaning =
    "with keep, true clears what is on the key and false what is off it";

inline std::vector<SymbolChoice> backings() {
    return {{"green", KeyColour::Green}, {"blue", KeyColour::Blue}, {"red", KeyColour::Red}};
}

}  // namespace krl
