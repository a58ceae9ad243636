#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/HostTypes.h"

namespace krl::player {

using host::SymbolId;

/// `text` with ASCII letters in lower case, for comparing names and strings.
std::string folded(std::string_view text);

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
    std::unordered_map<std::string, SymbolId> ids_;
};

}  // namespace krl::player
