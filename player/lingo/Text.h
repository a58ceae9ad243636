#pragma once

#include <string>

#include "player/host/Objects.h"
#include "player/host/SymbolTable.h"

/// How values read.
namespace krl::player {

struct TextStyle {
    const SymbolTable& symbols;
    int floatPrecision = 4;
};

/// As `string` and `&` make it: text without quotes, VOID as nothing.
std::string plainText(const TextStyle& style, const Value& value);
/// As the message window shows it: text in quotes, `<Void>`.
std::string shownText(const TextStyle& style, const Value& value);

/// With its article, as messages name a kind: `an integer`, `VOID`.
std::string kindName(Kind kind);
/// As `ilk` names it: `integer`, `propList`.
const char* ilkName(Kind kind);

/// `#rrggbb`, with or without the sign; false for any other text.
bool readHexColour(std::string_view text, Colour& colour);
std::string hexColour(Colour colour);

}  // namespace krl::player
