#pragma once

#include <algorithm>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/HostTypes.h"

namespace krl::player {

using host::SymbolId;

/// `text` with ASCII letters in lower case, for comparing names and strings.
std::string folded(std::string_view text);
/// An ASCII letter in lower case; any other byte as it is.
constexpr char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}
/// Whether two texts are equal, ignoring the case of ASCII letters.
inline bool sameText(std::string_view a, std::string_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return lower(x) == lower(y); });
}

/// For tables by names and texts, ignoring case.
struct FoldedHash {
    size_t operator()(std::string_view text) const noexcept;
};
struct SameText {
    bool operator()(std::string_view a, std::string_view b) const noexcept { return sameText(a, b); }
};

/// Interned names, ignoring case. A symbol is spelled as in its first use as a symbol, or until then as in
/// the first identifier.
class SymbolTable {
public:
    SymbolId symbol(std::string_view spelling) { return intern(spelling, true); }
    SymbolId identifier(std::string_view spelling) { return intern(spelling, false); }
    /// The name without its `#`; `?` for an unknown number.
    const std::string& spelling(SymbolId id) const;
    bool contains(SymbolId id) const { return id >= 0 && static_cast<size_t>(id) < entries_.size(); }

private:
    struct Entry {
        std::string spelling;
        bool usedAsSymbol;
    };

    SymbolId intern(std::string_view spelling, bool asSymbol);

    std::deque<Entry> entries_;
    std::unordered_map<std::string_view, SymbolId, FoldedHash, SameText>
        ids_;  ///< under the spellings in `entries_`
};

}  // namespace krl::player
