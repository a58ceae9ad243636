#pragma once

#include <string>

#include "catalogue/Method.h"
#include "catalogue/Value.h"
#include "player/lingo/Syntax.h"

/// Judges arguments before a method sees them.
namespace krl::player {

/// What is wrong with giving `given` for an argument, in one line; empty when nothing is, or when
/// it cannot be known before the script runs.
std::string complaintAbout(const Argument& argument, const Expression& given, const SymbolTable& symbols);

/// The same for a value; `text` is what was written for it.
std::string complaintAbout(const Argument& argument, const krl::Value& given, const std::string& text);

}  // namespace krl::player
