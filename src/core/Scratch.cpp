#include "core/Scratch.h"

#include <cstdint>
#include <new>

#include "core/Faults.h"

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace krl {

Faults& faults() {
    static Faults instance;
    return instance;
}

void* takeScratch(size_t bytes) {
    if (!Faults::grant(faults().scratchBlocks)) throw std::bad_alloc();
    return ::operator new (bytes, std::align_val_t{64});
}

void giveScratch(void* block) noexcept { ::operator delete (block, std::align_val_t{64}); }

}  // namespace krl
