#pragma once

#include <string>

#include "catalogue/Method.h"
#include "player/lingo/Syntax.h"

/// Judges arguments by their text alone, without running anything.
namespace krl::player {

/// What is wrong with giving `given` for an argument, in one line; empty when nothing is, or when
/// it cannot be known before the script runs.
std::string complaintAbout(const Argument& argument, const Expression& given, const SymbolTable& symbols);

/// The same for a Lingo text.
std::string complaintAbout(const Argument& argument, const std::string& text);

}  // namespace krl::player
