#include "player/host/SymbolTable.h"

namespace krl::player {

std::string folded(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return lower;
}

const std::string& SymbolTable::spelling(SymbolId id) const {
    static const std::string unknown = "?";
    return contains(id) ? entries_[static_cast<size_t>(id)].spelling : unknown;
}

SymbolId SymbolTable::intern(std::string_view spelling, bool asSymbol) {
    const auto [found, added] = ids_.try_emplace(folded(spelling), static_cast<SymbolId>(entries_.size()));
    if (added) {
        entries_.push_back({std::string(spelling), asSymbol});
        return found->second;
    }
    Entry& entry = entries_[static_cast<size_t>(found->second)];
    if (asSymbol && !entry.usedAsSymbol) entry = {std::string(spelling), true};
    return found->second;
}

}  // namespace krl::player
