#pragma once

#include "catalogue/Value.h"
#include "player/host/SymbolTable.h"
#include "player/host/Value.h"

namespace krl::player {

/// A script's value as the catalogue takes it; an image becomes a picture of its own. A rect, a script and
/// the like, which no method takes, become nothing.
krl::Value plainValue(const SymbolTable& symbols, const Value& value);

}  // namespace krl::player
