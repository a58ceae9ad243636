#include "catalogue/Notation.h"

#include <cctype>
#include <charconv>
#include <cstdint>

#include "catalogue/Letters.h"

namespace krl {

namespace {

/// Lists within lists; deeper texts are refused before the stack is at stake.
constexpr int kDeepest = 64;

class Reader {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    Value readAll() {
        Value value = readValue();
        skipBlanks();
        if (at_ != text_.size()) fail("expected the end of the value");
        return value;
    }

private:
    [[noreturn]] void fail(const std::string& message) const {
        throw NotationError(
            message + " at character " + std::to_string(at_ + 1) + " of " + std::string(text_), at_ + 1);
    }

    char next() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    void skipBlanks() {
        while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_]))) ++at_;
    }

    bool take(char letter) {
        skipBlanks();
        if (next() != letter) return false;
        ++at_;
        return true;
    }

    void expect(char letter) {
        if (!take(letter)) fail(std::string("expected ") + letter);
    }

    Value readValue() {
        skipBlanks();
        const char letter = next();
        if (letter == '[') return readList();
        if (letter == '#') return readSymbol();
        if (letter == '"') return readText();
        if (std::isalpha(static_cast<unsigned char>(letter))) return readNamed();
        return readNumber();
    }

    std::string readName() {
        const size_t first = at_;
        while (std::isalnum(static_cast<unsigned char>(next())) || next() == '_') ++at_;
        if (first == at_) fail("expected a name");
        return std::string(text_.substr(first, at_ - first));
    }

    Value readSymbol() {
        ++at_;
        return Symbol{readName()};
    }

    Value readText() {
        ++at_;
        const size_t end = text_.find('"', at_);
        if (end == std::string_view::npos) fail("expected a closing quotation mark");
        std::string text(text_.substr(at_, end - at_));
        at_ = end + 1;
        return text;
    }

    Value readNumber() {
        if (next() == '+') ++at_;
        const char* const first = text_.data() + at_;
        const char* const end = text_.data() + text_.size();
        int32_t whole = 0;
        double real = 0;
        const auto wholeEnd = std::from_chars(first, end, whole);
        const auto realEnd = std::from_chars(first, end, real);
        if (realEnd.ec != std::errc()) fail("expected a value");
        at_ += static_cast<size_t>(realEnd.ptr - first);
        if (wholeEnd.ec == std::errc() && wholeEnd.ptr == realEnd.ptr) return whole;
        return real;
    }

    int32_t readInteger() {
        const Value value = readValue();
        if (const int32_t* whole = value.as<int32_t>()) return *whole;
        fail("expected an integer");
    }

    uint8_t readByte() {
        const int32_t whole = readInteger();
        if (whole < 0 || whole > 255) fail("expected a level from 0 to 255");
        return static_cast<uint8_t>(whole);
    }

    /// `rgb(...)`, `point(...)`, `image(...)` or a word.
    Value readNamed() {
        const std::string name = readName();
        if (sameLetters(name, "VOID")) return {};
        if (sameLetters(name, "TRUE")) return int32_t{1};
        if (sameLetters(name, "FALSE")) return int32_t{0};
        expect('(');
        Value value;
        if (sameLetters(name, "rgb") || sameLetters(name, "color"))
            value = readColour();
        else if (sameLetters(name, "point"))
            value = readPoint();
        else if (sameLetters(name, "image"))
            value = readPicture();
        else
            fail("there is no value " + name + "(...)");
        expect(')');
        return value;
    }

    Colour readColour() {
        const uint8_t red = readByte();
        expect(',');
        const uint8_t green = readByte();
        expect(',');
        return {red, green, readByte()};
    }

    Point readPoint() {
        Point point;
        point.x = readInteger();
        expect(',');
        point.y = readInteger();
        return point;
    }

    PictureReference readPicture() {
        const Value first = readValue();
        if (const std::string* name = first.as<std::string>()) return {*name, 0, 0};
        const int32_t* width = first.as<int32_t>();
        if (!width) fail("expected a name or a width");
        PictureReference blank{"", *width, 0};
        expect(',');
        blank.height = readInteger();
        if (take(',')) readInteger();  // the depth, always 32
        return blank;
    }

    Value readList() {
        if (++depth_ > kDeepest) fail("lists are nested too deeply");
        ++at_;
        Value value = readItems();
        --depth_;
        return value;
    }

    Value readItems() {
        if (take(':')) {
            expect(']');
            return PropertyListValue();
        }
        if (take(']')) return ListValue();
        Value first = readValue();
        return take(':') ? readProperties(std::move(first)) : readElements(std::move(first));
    }

    Value readElements(Value first) {
        ListValue list;
        list.push_back(std::move(first));
        while (take(',')) list.push_back(readValue());
        expect(']');
        return list;
    }

    Value readProperties(Value key) {
        PropertyListValue list;
        for (;;) {
            Value value = readValue();
            list.emplace_back(std::move(key), std::move(value));
            if (!take(',')) break;
            key = readValue();
            expect(':');
        }
        expect(']');
        return list;
    }

    std::string_view text_;
    size_t at_ = 0;
    int depth_ = 0;
};

struct Writer {
    std::string operator()(std::monostate) const { return "VOID"; }
    std::string operator()(int32_t whole) const { return std::to_string(whole); }
    std::string operator()(double real) const { return realNotation(real); }
    std::string operator()(const Symbol& symbol) const { return '#' + symbol.name; }
    std::string operator()(const std::string& text) const { return '"' + text + '"'; }
    std::string operator()(Colour colour) const {
        return "rgb(" + std::to_string(colour.red()) + ", " + std::to_string(colour.green()) + ", " +
               std::to_string(colour.blue()) + ")";
    }
    std::string operator()(Point point) const {
        return "point(" + std::to_string(point.x) + ", " + std::to_string(point.y) + ")";
    }
    std::string operator()(const ListValue& list) const {
        std::string text;
        for (const Value& value : list) text += (text.empty() ? "" : ", ") + writeNotation(value);
        return '[' + text + ']';
    }
    std::string operator()(const PropertyListValue& list) const {
        std::string text;
        for (const auto& [key, value] : list)
            text += (text.empty() ? "" : ", ") + writeNotation(key) + ": " + writeNotation(value);
        return list.empty() ? "[:]" : '[' + text + ']';
    }
    std::string operator()(const Picture& picture) const {
        return sized(picture.info.width, picture.info.height);
    }
    std::string operator()(const PictureReference& reference) const {
        return reference.name.empty() ? sized(reference.width, reference.height)
                                      : "image(\"" + reference.name + "\")";
    }

    static std::string sized(int32_t width, int32_t height) {
        return "image(" + std::to_string(width) + ", " + std::to_string(height) + ", 32)";
    }
};

}  // namespace

Value readNotation(std::string_view text) { return Reader(text).readAll(); }

std::string writeNotation(const Value& value) { return std::visit(Writer(), value.content()); }

std::string realNotation(double value) {
    char buffer[400];
    const auto end = std::to_chars(buffer, buffer + sizeof(buffer), value, std::chars_format::fixed).ptr;
    std::string text(buffer, end);
    return text.find_first_not_of("-0123456789") == std::string::npos ? text + ".0" : text;
}

}  // namespace krl
