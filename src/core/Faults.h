#pragma once

#include <cstdint>

namespace krl {

/// The one seam through which tests make scarce things run out. Each number is how many more are
/// granted; negative means no limit, which is how every program starts.
struct Faults {
    int32_t tasks = -1;          ///< band tasks
    int32_t threads = -1;        ///< band threads
    int32_t scratchBlocks = -1;  ///< picture-sized blocks

    /// Takes one from `supply`; false when it has run out.
    static bool grant(int32_t& supply) { return supply < 0 || supply-- > 0; }
};

/// The process's faults. Consulted on the calling thread only.
Faults& faults();

}  // namespace krl
