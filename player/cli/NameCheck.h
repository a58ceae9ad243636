#pragma once

#include <functional>

#include "player/lingo/Syntax.h"

namespace krl::player {

/// Reports every function, property and option that a script names and that there is not: `report` gets the
/// place and the message, which tells what needs a stage from what is misspelled.
void checkNames(const Script& script, const SymbolTable& symbols,
                const std::function<void(Place, const std::string&)>& report);

}  // namespace krl::player
