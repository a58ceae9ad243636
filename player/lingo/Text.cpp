#include "player/lingo/Text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "player/host/Compare.h"
#include "player/host/HostError.h"
#include "player/host/Xtra.h"
#include "player/lingo/ScriptObjects.h"

namespace krl::player {

namespace {

/// Leaves one decimal.
std::string withoutZeros(std::string text) {
    const size_t point = text.find('.');
    if (point != std::string::npos) text.erase(std::max(text.find_last_not_of('0'), point + 1) + 1);
    return text;
}

/// With an exponent where fixed decimals would hide the number or go on for digits it does not have. With a
/// precision of 0, to the nearest integer; with one below 0, without zeros at the end.
std::string floatText(double number, int precision) {
    if (std::isnan(number)) return "NAN";
    if (std::isinf(number)) return number < 0 ? "-INF" : "INF";
    char text[400];
    const int decimals = std::abs(precision);
    const double size = std::fabs(number);
    const bool hidden = size > 0 && precision != 0 && size < std::pow(10, -decimals);
    if (!hidden && size < 1e16) {
        std::snprintf(text, sizeof(text), "%.*f", decimals, number);
        return precision < 0 ? withoutZeros(text) : text;
    }
    std::snprintf(text, sizeof(text), "%.*e", decimals, number);
    std::string shown = text;
    // "e-05" and "e+20" are written e-5 and e20.
    size_t digits = shown.find('e') + 1;
    if (shown[digits] == '+') shown.erase(digits, 1);
    if (shown[digits] == '-') ++digits;
    while (shown[digits] == '0' && digits + 1 < shown.size()) shown.erase(digits, 1);
    return shown;
}

std::string colourText(const Value& value) {
    if (value.colourForm() == ColourForm::PaletteIndex)
        return "paletteIndex( " + std::to_string(value.paletteIndex()) + " )";
    const Colour colour = value.colour();
    return std::string(value.colourForm() == ColourForm::Color ? "color( " : "rgb( ") +
           std::to_string(colour.red()) + ", " + std::to_string(colour.green()) + ", " +
           std::to_string(colour.blue()) + " )";
}

std::string address(const Value& value) {
    char text[16];
    std::snprintf(text, sizeof(text), "%x", static_cast<unsigned>(slotOf(value.words())));
    return text;
}

/// Formats nested values, up to a limited depth.
class Writer {
public:
    explicit Writer(const TextStyle& style) : style_(style) {}

    std::string text(const Value& value, int depth = 0) const {
        if (depth > kDeepestNesting) throw HostError("the list to show is nested too deeply");
        switch (value.kind()) {
            case Kind::Void:
                return "<Void>";
            case Kind::Integer:
                return std::to_string(value.integer());
            case Kind::Symbol:
                return '#' + style_.symbols.spelling(value.symbol());
            case Kind::Colour:
                return colourText(value);
            case Kind::Float:
                return floatText(value.number(), style_.floatPrecision);
            case Kind::String:
                return '"' + value.as<StringObject>()->text + '"';
            case Kind::List:
                return '[' + joined(value.as<ListObject>()->items, depth) + ']';
            case Kind::PropertyList:
                return properties(value.as<PropertyListObject>()->entries, depth);
            case Kind::Point:
                return "point(" + joined(value.as<PointObject>()->values, depth) + ')';
            case Kind::Rect:
                return "rect(" + joined(value.as<RectObject>()->values, depth) + ')';
            case Kind::Image:
                return "<image:" + address(value) + '>';
            case Kind::Xtra:
                return "(xtra \"" + value.as<XtraObject>()->xtra.name() + "\")";
            case Kind::XtraInstance:
                return "<Xtra child \"" + value.as<XtraInstanceObject>()->xtra.name() + "\" " +
                       address(value) + '>';
            case Kind::Script:
                return "(script \"" + value.as<ScriptObject>()->name() + "\")";
            case Kind::ScriptInstance:
                return "<offspring \"" + value.as<InstanceObject>()->name() + "\" " + address(value) + '>';
            case Kind::Member:
                return memberReference(*value.as<MemberObject>());
            case Kind::Vector:
                return vectorText(value.as<VectorObject>()->parts);
            case Kind::Date:
                return dateText(*value.as<DateObject>());
            case Kind::ByteArray:
                return bytesText(value.as<ByteArrayObject>()->content);
            case Kind::Transform:
                return transformText(value.as<TransformObject>()->matrix);
            case Kind::Environment:
                return std::string("(") + value.as<EnvironmentObject>()->name + ')';
            case Kind::CastLib:
                return "(castLib 1)";
            case Kind::Collection:
                return std::string("(") + value.as<CollectionObject>()->of + ')';
        }
        return "";
    }

private:
    static std::string memberReference(const MemberObject& member) {
        if (!member.name.empty() || member.number == 0) return "(member \"" + member.name + "\")";
        return "(member " + std::to_string(member.number) + " of castLib 1)";
    }

    std::string vectorText(const std::array<double, 3>& parts) const {
        std::string all;
        for (double part : parts) all += (all.empty() ? "" : ", ") + floatText(part, style_.floatPrecision);
        return "vector( " + all + " )";
    }

    std::string transformText(const Matrix& matrix) const {
        std::string all;
        for (size_t i = 0; i < matrix.size(); ++i)
            all += (i == 0 ? "" : i % 4 == 0 ? ", " : ",") + floatText(matrix[i], style_.floatPrecision);
        return "transform(" + all + ')';
    }

    static std::string bytesText(const std::vector<uint8_t>& bytes) {
        std::string all = "<ByteArrayObject length = " + std::to_string(bytes.size()) + " ByteArray = ";
        for (size_t i = 0; i < bytes.size(); ++i) {
            char text[8];
            std::snprintf(text, sizeof(text), "%s0x%x", i > 0 ? ", " : "", bytes[i]);
            all += text;
            bound(all);
        }
        return all + " >";
    }

    static std::string dateText(const DateObject& date) {
        return "date( " + std::to_string(date.year) + ", " + std::to_string(date.month) + ", " +
               std::to_string(date.day) + " )";
    }

    template <class Sequence>
    std::string joined(const Sequence& values, int depth) const {
        std::string all;
        for (const Value& value : values) {
            all += (all.empty() ? "" : ", ") + text(value, depth + 1);
            bound(all);
        }
        return all;
    }

    std::string properties(const std::vector<PropertyListObject::Entry>& entries, int depth) const {
        if (entries.empty()) return "[:]";
        std::string all;
        for (const auto& entry : entries)
            all +=
                (all.empty() ? "" : ", ") + text(entry.key, depth + 1) + ": " + text(entry.value, depth + 1);
        return '[' + all + ']';
    }

    /// A small list that contains another many times can have a huge text.
    static void bound(const std::string& text) {
        if (text.size() > kLongestText) throw HostError("the list to show is longer than 256 MB");
    }
    static constexpr size_t kLongestText = size_t(256) << 20;

    const TextStyle& style_;
};

}  // namespace

std::string plainText(const TextStyle& style, const Value& value) {
    if (value.is(Kind::String)) return value.as<StringObject>()->text;
    if (value.is(Kind::Symbol)) return style.symbols.spelling(value.symbol());
    return value.isVoid() ? "" : shownText(style, value);
}

std::string shownText(const TextStyle& style, const Value& value) { return Writer(style).text(value); }

std::string kindName(Kind kind) {
    static constexpr const char* names[] = {"VOID",
                                            "an integer",
                                            "a symbol",
                                            "a colour",
                                            "a float",
                                            "a string",
                                            "a list",
                                            "a property list",
                                            "a point",
                                            "a rect",
                                            "an image",
                                            "an xtra",
                                            "an instance of an xtra",
                                            "a script",
                                            "an instance of a script",
                                            "a member",
                                            "a vector",
                                            "a date",
                                            "a byte array",
                                            "a transform",
                                            "an object of the player",
                                            "a cast library",
                                            "a collection"};
    return names[static_cast<size_t>(kind)];
}

const char* ilkName(Kind kind) {
    static constexpr const char* names[] = {
        "void",   "integer", "symbol",    "color",     "float",    "string",  "list",     "propList",
        "point",  "rect",    "image",     "xtra",      "instance", "script",  "instance", "member",
        "vector", "date",    "byteArray", "transform", "object",   "castLib", "object"};
    return names[static_cast<size_t>(kind)];
}

bool readHexColour(std::string_view text, Colour& colour) {
    if (!text.empty() && text.front() == '#') text.remove_prefix(1);
    if (text.size() != 6) return false;
    uint32_t packed = 0;
    for (char letter : text) {
        uint32_t digit = 0;
        if (letter >= '0' && letter <= '9')
            digit = static_cast<uint32_t>(letter - '0');
        else if ((letter | 0x20) >= 'a' && (letter | 0x20) <= 'f')
            digit = static_cast<uint32_t>((letter | 0x20) - 'a') + 10;
        else
            return false;
        packed = packed * 16 + digit;
    }
    const auto byte = [packed](int shift) { return static_cast<uint8_t>(packed >> shift); };
    colour = Colour(byte(16), byte(8), byte(0));
    return true;
}

std::string hexColour(Colour colour) {
    char text[16];
    std::snprintf(text, sizeof(text), "#%02X%02X%02X", colour.red(), colour.green(), colour.blue());
    return text;
}

}  // namespace krl::player
