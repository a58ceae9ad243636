#pragma once

#include "catalogue/Value.h"
#include "player/host/SymbolTable.h"
#include "player/host/Value.h"

namespace krl::player {

/// Converts a script's value for the catalogue; an image is copied into a picture. Types that no method
/// takes, such as rects and scripts, become VOID.
krl::Value plainValue(const SymbolTable& symbols, const Value& value);

}  // namespace krl::player
