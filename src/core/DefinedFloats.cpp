#include "core/DefinedFloats.h"

namespace krl {

#if defined(__i386__) || defined(__x86_64__)

// The whole x87 environment and not the control word alone: a flag raised meanwhile would trap as
// soon as a caller that traps has its control word back.
DefinedFloats::DefinedFloats() {
    constexpr uint32_t kNearestWithoutTraps = 0x1F80;
    __asm__ volatile("fnstenv %0\n\tfninit\n\tstmxcsr %1\n\tldmxcsr %2"
                     : "=m"(x87Environment_), "=m"(mxcsr_)
                     : "m"(kNearestWithoutTraps)
                     : "memory");
}

DefinedFloats::~DefinedFloats() {
    __asm__ volatile("fldenv %0\n\tldmxcsr %1" : : "m"(x87Environment_), "m"(mxcsr_) : "memory");
}

#else

DefinedFloats::DefinedFloats() {
    std::fegetenv(&environment_);
    std::fesetenv(FE_DFL_ENV);
}

DefinedFloats::~DefinedFloats() { std::fesetenv(&environment_); }

#endif

}  // namespace krl
