#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace krl::player {

/// One method as a registered message table tells it.
struct MethodSignature {
    struct Argument {
        std::string kind;  ///< `integer`, `symbol`, ...
        std::string name;
    };
    std::string name;
    std::vector<Argument> arguments;  ///< without `object me`
};

/// What a message table says: the xtra's name, and its methods, each at the place of its selector.
struct MessageTable {
    std::string xtraName;
    std::vector<MethodSignature> methods;
};

/// Reads a table: `xtra NAME` on the first line, then `name object me, kind name, ... -- comment`.
/// Throws `HostError` where the text is none.
MessageTable readMessageTable(std::string_view text);

}  // namespace krl::player
