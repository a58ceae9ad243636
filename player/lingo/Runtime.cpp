#include "player/lingo/Runtime.h"

#include <unordered_map>

#include "player/host/HostError.h"
#include "player/lingo/Arithmetic.h"

namespace krl::player {

/// Combines the high halves of two steps, since the generator's low bits are weak.
uint32_t Runtime::nextRandom() {
    uint32_t bits = 0;
    auto state = static_cast<uint32_t>(settings.randomSeed);
    for (int half = 0; half < 2; ++half) {
        state = state * 1664525u + 1013904223u;
        bits = bits << 16 | state >> 16;
    }
    settings.randomSeed = static_cast<int32_t>(state);
    return bits;
}

std::vector<std::span<const Builtin>> builtinFamilies() {
    return {mathBuiltins(),   textBuiltins(), listBuiltins(),      shapeBuiltins(),
            imageBuiltins(),  drawBuiltins(), systemBuiltins(),    objectBuiltins(),
            vectorBuiltins(), dataBuiltins(), transformBuiltins(), castBuiltins()};
}

std::vector<std::span<const PropertyEntry>> propertyFamilies() {
    return {objectProperties(), systemProperties(), movieProperties(),     scriptProperties(),
            vectorProperties(), dataProperties(),   transformProperties(), castProperties()};
}

const Meaning* meaningOf(std::string_view name) {
    static const auto all = [] {
        std::unordered_map<std::string_view, Meaning, FoldedHash, SameText> made;
        for (const auto& family : builtinFamilies())
            for (const Builtin& entry : family) made[entry.name].function = &entry;
        for (const auto& family : propertyFamilies())
            for (const PropertyEntry& entry : family) made[entry.name].properties.push_back(&entry);
        return made;
    }();
    const auto found = all.find(name);
    return found == all.end() ? nullptr : &found->second;
}

const Value& Arguments::operator[](size_t index) const {
    static const Value none;
    return index < values_.size() ? values_[index] : none;
}

int32_t Arguments::integer(size_t index) const {
    const Value& value = (*this)[index];
    if (value.isInteger()) return value.integer();
    if (!value.is(Kind::Float)) mismatch(index, "a number");
    return rounded(value.number());
}

double Arguments::number(size_t index) const {
    const Value& value = (*this)[index];
    if (!value.isNumber()) mismatch(index, "a number");
    return value.number();
}

const std::string& Arguments::text(size_t index) const { return object<StringObject>(index).text; }

SymbolId Arguments::symbol(size_t index) const {
    const Value& value = (*this)[index];
    if (!value.is(Kind::Symbol)) mismatch(index, "a symbol");
    return value.symbol();
}

Colour Arguments::colour(size_t index) const {
    const Value& value = (*this)[index];
    if (!value.is(Kind::Colour)) mismatch(index, "a colour");
    return value.colour();
}

void Arguments::mismatch(size_t index, const std::string& wanted) const {
    const Kind given = (*this)[index].kind();
    const size_t number = index + (asMethod_ ? 0 : 1);
    const std::string place = number > 0 ? "as argument " + std::to_string(number) : "before the dot";
    throw HostError(std::string(function_) + ": expected " + wanted + ' ' + place + ", not " +
                    kindName(given));
}

}  // namespace krl::player
