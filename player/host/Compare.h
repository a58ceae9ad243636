#pragma once

#include <string_view>

#include "player/host/Objects.h"
#include "player/host/SymbolTable.h"

/// Comparison of values, for scripts and for keys of property lists.
namespace krl::player {

/// Nesting limit of lists that are compared, copied or shown.
inline constexpr int kDeepestNesting = 200;

/// Compares ignoring case: negative, 0 or positive.
int compareText(std::string_view a, std::string_view b);
/// Whether `text` is a number, with optional blanks around it.
bool readNumber(std::string_view text, double& number);

/// Numbers compare by value, strings and symbols ignoring case, a string that holds a number as that number
/// if the other side is one, lists by their elements, objects by identity.
bool equal(const SymbolTable& symbols, const Value& a, const Value& b);
/// Negative, 0 or positive by the order of `sort`.
int compare(const SymbolTable& symbols, const Value& a, const Value& b);

/// The entry under `key`, or null. A string is found as it is spelled; without such an entry, a string finds
/// the symbol of that name and a symbol the string.
const PropertyListObject::Entry* findEntry(const SymbolTable& symbols, const PropertyListObject& list,
                                           const Value& key);

}  // namespace krl::player
