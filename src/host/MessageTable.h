#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Catalogue.h"

namespace krl::host {

/// The text that describes the methods to a host: a line for the xtra, then one for each selector from `new`
/// (0) on, each ended by a line feed. Registered as one string, stored in two pieces: the first two lines,
/// and the methods. Catalogue methods without a fixed line are appended.
class MessageTable {
public:
    explicit MessageTable(const Catalogue& catalogue);

    /// Bytes to allocate for the whole text: the text, its terminator and one spare byte.
    uint32_t bytes() const { return static_cast<uint32_t>(head_.size() + body_.size() + 2); }
    std::string_view head() const { return head_; }
    const std::string& body() const { return body_; }
    /// The line of `selector` without its line feed, such as `krlImageQuit object me -- `.
    std::string_view line(int32_t selector) const;

    /// Methods in the order of their lines: element 0 is selector 1.
    const std::vector<const Method*>& methods() const { return methods_; }

private:
    std::string_view head_;
    std::string body_;
    std::vector<const Method*> methods_;
};

/// The table of this program's catalogue.
const MessageTable& messageTable();
/// The same; null where there is no memory to make it.
const MessageTable* messageTableOrNull() noexcept;

}  // namespace krl::host
