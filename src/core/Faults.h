#pragma once

#include <cstdint>

namespace krl {

/// Fault injection for tests. Each number is how many more resources are granted; negative, the default,
/// means no limit.
struct Faults {
    int32_t tasks = -1;          ///< band tasks
    int32_t threads = -1;        ///< band threads
    int32_t scratchBlocks = -1;  ///< picture-sized blocks

    /// Takes one from `supply`; false if none is left.
    static bool grant(int32_t& supply) { return supply < 0 || supply-- > 0; }
};

/// The process's faults. Only the calling thread reads them.
Faults& faults();

}  // namespace krl
