#pragma once

#include <cstdint>

namespace krl {

/// Copies 32-bit words from many places: word i of `to` becomes word `at[i]` of `from`, for `count` words.
/// The blocks must not overlap.
void gatherWords(const void* from, const int32_t* at, int32_t count, void* to);

}  // namespace krl
