#include "player/host/HostError.h"
#include "player/lingo/Chunks.h"
#include "player/lingo/Runtime.h"

/// Strings, symbols and type tests.
namespace krl::player {

namespace {

Value length(Runtime& runtime, const Arguments& arguments) {
    const auto& text = arguments.object<StringObject>(0);
    return Value::integer(countIn(text, ChunkKind::Char, runtime.settings.itemDelimiter));
}

Value chars(Runtime& runtime, const Arguments& arguments) {
    const auto& whole = arguments.object<StringObject>(0);
    const Stretch part = findIn(whole, ChunkKind::Char, arguments.integer(1), arguments.integer(2), ',');
    return runtime.text(std::string(part.of(whole.text)));
}

/// The code point of the first character.
Value charToNum(Runtime&, const Arguments& arguments) {
    const std::string& whole = arguments.text(0);
    const Stretch first = findChunk(whole, ChunkKind::Char, 1, 1, ',');
    if (first.length() == 0) return Value::integer(0);
    const auto lead = static_cast<unsigned char>(whole[0]);
    if (first.length() == 1) return Value::integer(lead);
    uint32_t code = lead & (0x7Fu >> first.length());
    for (size_t i = 1; i < first.length() && i < 4; ++i)
        code = code << 6 | (static_cast<unsigned char>(whole[i]) & 0x3Fu);
    return Value::integer(static_cast<int32_t>(code));
}

Value numToChar(Runtime& runtime, const Arguments& arguments) {
    const int32_t number = arguments.integer(0);
    if (number < 0 || number > 0x10FFFF)
        throw HostError("numToChar: expected a number from 0 to 1114111, not " + std::to_string(number));
    const auto code = static_cast<uint32_t>(number);
    std::string made;
    const auto tail = [&](int shift) { made += static_cast<char>(0x80u | (code >> shift & 0x3Fu)); };
    if (code < 0x80) {
        made += static_cast<char>(code);
    } else if (code < 0x800) {
        made += static_cast<char>(0xC0u | code >> 6);
        tail(0);
    } else if (code < 0x10000) {
        made += static_cast<char>(0xE0u | code >> 12);
        tail(6);
        tail(0);
    } else {
        made += static_cast<char>(0xF0u | code >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
    return runtime.text(std::move(made));
}

Value toText(Runtime& runtime, const Arguments& arguments) {
    return runtime.text(runtime.plain(arguments[0]));
}

Value toSymbol(Runtime& runtime, const Arguments& arguments) {
    if (arguments[0].is(Kind::Symbol)) return arguments[0];
    std::string name = arguments.text(0);
    if (!name.empty() && name.front() == '#') name.erase(0, 1);
    return runtime.symbol(name);
}

Value toValue(Runtime& runtime, const Arguments& arguments) {
    return arguments[0].is(Kind::String) ? runtime.valueOf(arguments.text(0)) : arguments[0];
}

bool isOfKind(const Runtime& runtime, const Value& value, SymbolId name) {
    const std::string wanted = folded(runtime.symbols.spelling(name));
    if (wanted == folded(ilkName(value.kind()))) return true;
    const bool sequence =
        value.is(Kind::List) || value.is(Kind::PropertyList) || value.is(Kind::Point) || value.is(Kind::Rect);
    const bool plain = value.kind() < Kind::List || value.isVoid();
    return (wanted == "list" && sequence) || (wanted == "linearlist" && value.is(Kind::List)) ||
           (wanted == "number" && value.isNumber()) || (wanted == "colour" && value.is(Kind::Colour)) ||
           (wanted == "object" && !plain && !sequence);
}

Value ilk(Runtime& runtime, const Arguments& arguments) {
    if (!arguments.has(1)) return runtime.symbol(ilkName(arguments[0].kind()));
    return Value::truth(isOfKind(runtime, arguments[0], arguments.symbol(1)));
}

template <Kind Wanted>
Value isKind(Runtime&, const Arguments& arguments) {
    return Value::truth(arguments[0].is(Wanted));
}

Value isList(Runtime& runtime, const Arguments& arguments) {
    return Value::truth(isOfKind(runtime, arguments[0], runtime.symbols.identifier("list")));
}

Value isObject(Runtime& runtime, const Arguments& arguments) {
    return Value::truth(isOfKind(runtime, arguments[0], runtime.symbols.identifier("object")));
}

constexpr Builtin kBuiltins[] = {
    {"length", 1, 1, length},
    {"chars", 3, 3, chars},
    {"charToNum", 1, 1, charToNum},
    {"numToChar", 1, 1, numToChar},
    {"string", 1, 1, toText},
    {"symbol", 1, 1, toSymbol},
    {"value", 1, 1, toValue},
    {"ilk", 1, 2, ilk},
    {"integerP", 1, 1, isKind<Kind::Integer>},
    {"floatP", 1, 1, isKind<Kind::Float>},
    {"stringP", 1, 1, isKind<Kind::String>},
    {"symbolP", 1, 1, isKind<Kind::Symbol>},
    {"voidP", 1, 1, isKind<Kind::Void>},
    {"listP", 1, 1, isList},
    {"objectP", 1, 1, isObject},
};

}  // namespace

std::span<const Builtin> textBuiltins() { return kBuiltins; }

}  // namespace krl::player
