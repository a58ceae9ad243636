#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace krl::player {

/// One method as described by a registered message table.
struct MethodSignature {
    std::string name;
    size_t arguments = 0;  ///< how many, without `object me`
};

/// A parsed message table: the xtra's name and its methods, indexed by selector.
struct MessageTable {
    std::string xtraName;
    std::vector<MethodSignature> methods;
};

/// Reads a table: `xtra NAME` on the first line, then `name object me, kind name, ... -- comment`.
/// Throws `HostError` if the text is invalid.
MessageTable readMessageTable(std::string_view text);

}  // namespace krl::player
