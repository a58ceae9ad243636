#pragma once

#include <string>

namespace krl::player {

/// Breaks the long lines of a help text between words, and indents what follows like the last column.
/// Commands to copy stay whole. No width leaves all lines as they are.
std::string fittedText(const std::string& text, int width);

}  // namespace krl::player
