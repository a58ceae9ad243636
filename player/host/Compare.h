#pragma once

#include <string_view>

#include "player/host/Objects.h"
#include "player/host/SymbolTable.h"

/// How values compare, for scripts and for keys of property lists alike.
namespace krl::player {

/// Lists within lists may go this deep where they are compared, copied or shown.
inline constexpr int kDeepestNesting = 200;

/// Letter case aside: negative, 0 or positive.
int compareText(std::string_view a, std::string_view b);
/// Whether `text` is a number and nothing else but blanks around it.
bool readNumber(std::string_view text, double& number);

/// Numbers by value, strings and symbols letter case aside, a string that holds a number as that
/// number against one, lists by their elements, objects by identity.
bool equal(const SymbolTable& symbols, const Value& a, const Value& b);
/// Negative, 0 or positive in the order in which `sort` puts them.
int compare(const SymbolTable& symbols, const Value& a, const Value& b);

/// The entry under `key`, or null.
const PropertyListObject::Entry* findEntry(const SymbolTable& symbols, const PropertyListObject& list,
                                           const Value& key);

}  // namespace krl::player
