#pragma once

#include <algorithm>
#include <cctype>
#include <string_view>

namespace krl {

/// Whether two names are the same, letter case aside.
inline bool sameLetters(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

}  // namespace krl
