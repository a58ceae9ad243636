#include "catalogue/Notation.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>

#include "catalogue/Letters.h"

namespace krl {

namespace {

/// Lists within lists; deeper texts are refused before the stack is at stake.
constexpr int kDeepest = 64;

class Reader {
public:
    explicit Reader(std::string_view text, const NotationScope& scope = {}) : text_(text), scope_(scope) {}

    Value readAll(PercentKind percent = PercentKind::None) {
        percent_ = percent;
        Value value = readValue();
        skipBlanks();
        if (at_ != text_.size()) fail("expected the end of the value");
        return value;
    }

    CallNotation readCall() {
        CallNotation call;
        skipBlanks();
        if (std::isalpha(static_cast<unsigned char>(next()))) call.name = readName();
        if (take('(') && !take(')')) {
            do call.arguments.push_back(readArgument(call));
            while (take(','));
            expect(')');
        }
        skipBlanks();
        if (at_ != text_.size()) fail("expected the end of the call");
        return call;
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

    CallNotation::Argument readArgument(const CallNotation& call) {
        CallNotation::Argument argument;
        skipBlanks();
        const size_t start = at_;
        if (next() == '#') ++at_;
        if (std::isalpha(static_cast<unsigned char>(next()))) argument.name = readName();
        if (argument.name.empty() || !take(':')) {
            argument.name.clear();
            at_ = start;
        }
        const size_t place = call.arguments.size();
        percent_ = scope_.percent ? scope_.percent(call.name, argument.name, place) : PercentKind::None;
        argument.value = readValue();
        return argument;
    }

    Value readValue() {
        skipBlanks();
        const char letter = next();
        if (letter == '$' && scope_.named) return readParameter();
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

    Value readParameter() {
        const size_t start = at_++;
        const std::string name = readName();
        const std::string* text = scope_.named(name);
        if (!text) {
            at_ = start;
            fail("there is no parameter $" + name);
        }
        NotationScope inner;
        inner.width = scope_.width;
        inner.height = scope_.height;
        Reader reader(*text, inner);
        reader.whole_ = whole_;
        return reader.readAll(percent_);
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
        if (next() == '%') return readPercentage(real);
        if (wholeEnd.ec == std::errc() && wholeEnd.ptr == realEnd.ptr) return whole;
        return real;
    }

    /// The rest of a percentage of the side that counts here.
    Value readPercentage(double percentage) {
        if (scope_.width < 1) fail("a percentage has no meaning here");
        if (percent_ == PercentKind::None) fail("a percentage is for a length or a point");
        ++at_;
        const double pixels = percentage / 100 * (whole_ ? whole_ : std::min(scope_.width, scope_.height));
        if (percent_ == PercentKind::Real) return pixels;
        if (!(std::abs(pixels) < INT32_MAX)) fail("the percentage is too large");
        return static_cast<int32_t>(std::lround(pixels));
    }

    /// A coordinate; a percentage is of `whole`.
    int32_t readCoordinate(int32_t whole) {
        const PercentKind outer = std::exchange(percent_, PercentKind::Whole);
        whole_ = whole;
        const int32_t pixels = readInteger();
        whole_ = 0;
        percent_ = outer;
        return pixels;
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
        else if (sameLetters(name, "rect"))
            value = readSides();
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
        point.x = readCoordinate(scope_.width);
        expect(',');
        point.y = readCoordinate(scope_.height);
        return point;
    }

    /// Left, top, right and bottom as a list.
    ListValue readSides() {
        ListValue sides;
        for (int i = 0; i < 4; ++i) {
            if (i > 0) expect(',');
            sides.emplace_back(readCoordinate(i % 2 ? scope_.height : scope_.width));
        }
        return sides;
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
        const PercentKind outer = std::exchange(percent_, PercentKind::None);
        Value value = readItems();
        percent_ = outer;
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
    NotationScope scope_;
    size_t at_ = 0;
    int depth_ = 0;
    PercentKind percent_ = PercentKind::None;  ///< what a percentage here becomes
    int32_t whole_ = 0;                        ///< what it is a part of, or 0 for the shorter side
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

CallNotation readCallNotation(std::string_view text, const NotationScope& scope) {
    return Reader(text, scope).readCall();
}

std::string writeNotation(const Value& value) { return std::visit(Writer(), value.content()); }

std::string realNotation(double value) {
    char buffer[400];
    const auto end = std::to_chars(buffer, buffer + sizeof(buffer), value, std::chars_format::fixed).ptr;
    std::string text(buffer, end);
    return text.find_first_not_of("-0123456789") == std::string::npos ? text + ".0" : text;
}

}  // namespace krl
