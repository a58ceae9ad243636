#include "player/cli/ChainNotes.h"

#include <optional>

#include "catalogue/Notation.h"
#include "player/cli/MethodFacts.h"

namespace krl::player {

namespace {

std::optional<double> numberOf(const krl::Value& value) {
    if (const auto* integer = value.as<int32_t>()) return *integer;
    if (const auto* real = value.as<double>()) return *real;
    return std::nullopt;
}

bool isNumber(const Argument& argument) {
    return argument.kind == ArgumentKind::Integer || argument.kind == ArgumentKind::Real;
}

}  // namespace

std::vector<std::string> notesOn(const std::vector<ChainCall>& chain) {
    std::vector<std::string> notes;
    for (const ChainCall& call : chain) {
        const std::string name = call.method().shortName();
        if (call.method().isInert())
            notes.push_back(name + " does nothing; it is there for scripts that call it");
        for (size_t i = 0; i < call.method().arguments().size(); ++i) {
            const Argument& argument = call.method().arguments()[i];
            const std::optional<double> number = numberOf(call.given(i));
            if (!number || !isNumber(argument)) continue;
            if (*number >= argument.range.from && *number <= argument.range.to) continue;
            notes.push_back(name + ": " + argument.name + " is " + writeNotation(call.given(i)) + "; " +
                            rangeText(argument) + " is usual");
        }
    }
    return notes;
}

}  // namespace krl::player
