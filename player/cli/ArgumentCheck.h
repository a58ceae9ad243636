#pragma once

#include <string>

#include "catalogue/Method.h"
#include "catalogue/Value.h"
#include "player/lingo/Syntax.h"

/// Checks arguments before a method is called.
namespace krl::player {

/// What is wrong with passing `given` for an argument, in one line; empty if nothing is, or if that is
/// unknown until the script runs.
std::string complaintAbout(const Argument& argument, const Expression& given, const SymbolTable& symbols);

/// The same for a value that `text` is the source of.
std::string complaintAbout(const Argument& argument, const krl::Value& given, const std::string& text);

}  // namespace krl::player
