#pragma once

#include <cstdint>

#if !defined(__i386__) && !defined(__x86_64__)
#include <cfenv>
#endif

namespace krl {

/// While it lives, its thread computes as effects are defined: rounding to nearest, the x87 unit at
/// its full precision, small numbers kept, no traps. At its end the thread has the settings and the
/// flags that it had before.
class DefinedFloats {
public:
    DefinedFloats();
    ~DefinedFloats();
    DefinedFloats(const DefinedFloats&) = delete;
    DefinedFloats& operator=(const DefinedFloats&) = delete;

private:
#if defined(__i386__) || defined(__x86_64__)
    uint32_t x87Environment_[7];
    uint32_t mxcsr_;
#else
    std::fenv_t environment_;
#endif
};

}  // namespace krl
