#pragma once

#include <cstddef>
#include <cstdint>

namespace krl {

/// Copies `count` pixels of four bytes with their first and third byte exchanged: BGRA becomes RGBA, and RGBA
/// BGRA. `to` is `from`, or they share no memory.
void exchangeRedAndBlue(const uint8_t* from, uint8_t* to, size_t count);

}  // namespace krl
