#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "player/host/SymbolTable.h"

namespace krl::player {

/// One method as described by a registered message table.
struct MethodSignature {
    std::string_view name;
    size_t arguments = 0;  ///< how many, without `object me`
};

/// A message table: `xtra NAME` on the first line, then `name object me, kind name, ... -- comment`. Its
/// methods are read when they are first asked for, since most scripts begin without them.
class MessageTable {
public:
    /// Throws `HostError` unless the text begins with the xtra's name.
    explicit MessageTable(std::string text);
    MessageTable(const MessageTable&) = delete;
    MessageTable& operator=(const MessageTable&) = delete;

    const std::string& xtraName() const { return xtraName_; }
    /// By selector.
    const std::vector<MethodSignature>& methods() const;
    /// Selector of a method by name, ignoring case; negative if there is none.
    int32_t selector(std::string_view name) const;

private:
    const std::string text_;
    std::string xtraName_;
    mutable std::string_view unread_;
    mutable std::vector<MethodSignature> methods_;
    mutable std::unordered_map<std::string_view, int32_t, FoldedHash, SameText> selectors_;
};

}  // namespace krl::player
