#include "player/host/Compare.h"

#include <charconv>

#include "player/host/HostError.h"

namespace krl::player {

namespace {

int sign(double a, double b) { return a < b ? -1 : a > b ? 1 : 0; }

/// The rank of a type in a sorted list of mixed content.
int rank(Kind kind) {
    switch (kind) {
        case Kind::Void:
        case Kind::Integer:
        case Kind::Float:
            return 0;
        case Kind::String:
        case Kind::Symbol:
            return 1;
        default:
            return 2 + static_cast<int>(kind);
    }
}

std::string_view textOf(const SymbolTable& symbols, const Value& value) {
    return value.is(Kind::Symbol) ? symbols.spelling(value.symbol()) : value.as<StringObject>()->text;
}

/// One traversal for equality and order, up to a limited depth.
class Comparison {
public:
    explicit Comparison(const SymbolTable& symbols) : symbols_(symbols) {}

    int of(const Value& a, const Value& b, int depth = 0) const {
        if (a.is(Kind::Symbol) && b.is(Kind::Symbol) && a.sameWords(b)) return 0;
        if (depth > kDeepestNesting) throw HostError("the lists to compare are nested too deeply");
        double first = 0, second = 0;
        if (comparesAsNumber(a, b, first) && comparesAsNumber(b, a, second)) return sign(first, second);
        if (rank(a.kind()) != rank(b.kind())) return rank(a.kind()) < rank(b.kind()) ? -1 : 1;
        if (rank(a.kind()) == 1) return compareText(textOf(symbols_, a), textOf(symbols_, b));
        return ofObjects(a, b, depth + 1);
    }

private:
    /// A number; VOID as 0; compared with a number, also a string that holds one.
    static bool comparesAsNumber(const Value& value, const Value& other, double& number) {
        if (value.isNumber() || value.isVoid()) {
            number = value.isVoid() ? 0 : value.number();
            return true;
        }
        return value.is(Kind::String) && other.isNumber() &&
               readNumber(value.as<StringObject>()->text, number);
    }

    int ofObjects(const Value& a, const Value& b, int depth) const {
        if (a.sameWords(b)) return 0;
        switch (a.kind()) {
            case Kind::Colour:
                return sign(a.colour().word, b.colour().word);
            case Kind::List:
                return ofSequences(a.as<ListObject>()->items, b.as<ListObject>()->items, depth);
            case Kind::PropertyList:
                return ofEntries(*a.as<PropertyListObject>(), *b.as<PropertyListObject>(), depth);
            case Kind::Point:
                return ofSequences(a.as<PointObject>()->values, b.as<PointObject>()->values, depth);
            case Kind::Rect:
                return ofSequences(a.as<RectObject>()->values, b.as<RectObject>()->values, depth);
            default:
                return ofNumbers(a, b);
        }
    }

    /// By the numbers of both, or the order in which the objects were made.
    static int ofNumbers(const Value& a, const Value& b) {
        const std::vector<double> first = a.object()->numbers(), second = b.object()->numbers();
        if (first.empty() && second.empty())
            return sign(static_cast<uint32_t>(a.words().words[1]), static_cast<uint32_t>(b.words().words[1]));
        for (size_t i = 0; i < first.size() && i < second.size(); ++i)
            if (const int difference = sign(first[i], second[i])) return difference;
        return sign(double(first.size()), double(second.size()));
    }

    template <class Sequence>
    int ofSequences(const Sequence& a, const Sequence& b, int depth) const {
        for (size_t i = 0; i < a.size() && i < b.size(); ++i)
            if (const int difference = of(a[i], b[i], depth)) return difference;
        return sign(double(a.size()), double(b.size()));
    }

    int ofEntries(const PropertyListObject& a, const PropertyListObject& b, int depth) const {
        for (size_t i = 0; i < a.entries.size() && i < b.entries.size(); ++i) {
            if (const int difference = of(a.entries[i].key, b.entries[i].key, depth)) return difference;
            if (const int difference = of(a.entries[i].value, b.entries[i].value, depth)) return difference;
        }
        return sign(double(a.entries.size()), double(b.entries.size()));
    }

    const SymbolTable& symbols_;
};

bool sameKey(const SymbolTable& symbols, const Value& a, const Value& b) {
    return a.is(Kind::String) ? textOf(symbols, a) == textOf(symbols, b) : equal(symbols, a, b);
}

}  // namespace

int compareText(std::string_view a, std::string_view b) {
    for (size_t i = 0; i < a.size() && i < b.size(); ++i) {
        const auto first = static_cast<unsigned char>(lower(a[i]));
        const auto second = static_cast<unsigned char>(lower(b[i]));
        if (first != second) return first < second ? -1 : 1;
    }
    return sign(double(a.size()), double(b.size()));
}

bool readNumber(std::string_view text, double& number) {
    const auto blank = [](char letter) {
        return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
    };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    // Only digits make a number, not names such as "inf".
    const size_t first = text.substr(0, 1) == "-" ? 1 : 0;
    if (first >= text.size() || !(text[first] == '.' || (text[first] >= '0' && text[first] <= '9')))
        return false;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool equal(const SymbolTable& symbols, const Value& a, const Value& b) {
    if (a.isInteger() && b.isInteger()) return a.integer() == b.integer();
    if (a.is(Kind::String) && b.is(Kind::String)) {
        if (a.sameWords(b)) return true;
        return sameText(a.as<StringObject>()->text, b.as<StringObject>()->text);
    }
    if (a.is(Kind::Float) || b.is(Kind::Float)) {
        const Value& real = a.is(Kind::Float) ? a : b;
        if (real.number() != real.number()) return false;  // NaN equals nothing
    }
    return Comparison(symbols).of(a, b) == 0;
}

int compare(const SymbolTable& symbols, const Value& a, const Value& b) {
    return Comparison(symbols).of(a, b);
}

const PropertyListObject::Entry* findEntry(const SymbolTable& symbols, const PropertyListObject& list,
                                           const Value& key) {
    bool certain;
    const PropertyListObject::Entry* first = list.guess(key, certain);
    if (certain) return nullptr;
    if (first && first->key.kind() == key.kind() && sameKey(symbols, first->key, key)) return first;
    const bool named = key.is(Kind::String) || key.is(Kind::Symbol);
    const PropertyListObject::Entry* other = nullptr;
    for (const PropertyListObject::Entry& entry : list.entries) {
        const Kind kind = entry.key.kind();
        if (kind == key.kind()) {
            if (kind == Kind::Symbol ? entry.key.symbol() == key.symbol() : sameKey(symbols, entry.key, key))
                return &entry;
        } else if (named && !other && (kind == Kind::String || kind == Kind::Symbol) &&
                   sameText(textOf(symbols, entry.key), textOf(symbols, key))) {
            other = &entry;
        }
    }
    return other;
}

}  // namespace krl::player
