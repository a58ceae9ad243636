#include "player/host/SymbolTable.h"

namespace krl::player {

std::string folded(std::string_view text) {
    std::string made(text);
    for (char& letter : made) letter = lower(letter);
    return made;
}

/// FNV-1a over the letters in lower case.
size_t FoldedHash::operator()(std::string_view text) const noexcept {
    uint64_t hash = 0xCBF29CE484222325u;
    for (const char letter : text) hash = (hash ^ static_cast<unsigned char>(lower(letter))) * 0x100000001B3u;
    return static_cast<size_t>(hash);
}

const std::string& SymbolTable::spelling(SymbolId id) const {
    static const std::string unknown = "?";
    return contains(id) ? entries_[static_cast<size_t>(id)].spelling : unknown;
}

SymbolId SymbolTable::intern(std::string_view spelling, bool asSymbol) {
    if (const auto found = ids_.find(spelling); found != ids_.end()) {
        Entry& entry = entries_[static_cast<size_t>(found->second)];
        // In place, since the key lies there; it differs in case alone.
        if (asSymbol && !entry.usedAsSymbol)
            std::copy(spelling.begin(), spelling.end(), entry.spelling.begin());
        entry.usedAsSymbol |= asSymbol;
        return found->second;
    }
    const auto id = static_cast<SymbolId>(entries_.size());
    entries_.push_back({std::string(spelling), asSymbol});
    ids_.emplace(entries_.back().spelling, id);
    return id;
}

}  // namespace krl::player
