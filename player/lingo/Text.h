#pragma once

#include <string>

#include "player/host/Objects.h"
#include "player/host/SymbolTable.h"

/// Values as text.
namespace krl::player {

struct TextStyle {
    const SymbolTable& symbols;
    int floatPrecision = 4;
};

/// For `string` and `&`: strings without quotes, VOID as the empty string.
std::string plainText(const TextStyle& style, const Value& value);
/// For the message window: strings in quotes, `<Void>`.
std::string shownText(const TextStyle& style, const Value& value);

/// The type with its article, for messages: `an integer`, `VOID`.
std::string kindName(Kind kind);
/// The result of `ilk`: `integer`, `propList`.
const char* ilkName(Kind kind);

/// `#rrggbb`, with or without the `#`; false for any other text.
bool readHexColour(std::string_view text, Colour& colour);
std::string hexColour(Colour colour);

}  // namespace krl::player
