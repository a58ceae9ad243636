#pragma once

#include <cstdint>

namespace krl::host {

/// The text by which a host learns the methods: a line for the xtra, then one for each selector
/// from `new` (0) to 112, each ended by a line feed. It is registered as one string, kept in two
/// pieces: the first two lines, and the rest.
extern const char kMessageTableHead[];
extern const char kMessageTableBody[];

/// Bytes asked of the host's allocator for the whole text.
inline constexpr uint32_t kMessageTableBytes = 10482;

/// Selectors 1 to this number are methods.
inline constexpr int32_t kMethodCount = 112;

/// The line of `selector` without its line feed, such as `krlImageQuit object me -- `; its end is
/// written to `lineBytes`.
const char* messageTableLine(int32_t selector, int32_t* lineBytes);

}  // namespace krl::host
