#pragma once

#include <cstdint>

namespace krl {

/// Fault injection for tests. Each number is how many more resources are granted; negative, the default,
/// means no limit. After the grants one request is refused, or every one if the fault is `lasting`.
struct Faults {
    int32_t tasks = -1;          ///< band tasks
    int32_t threads = -1;        ///< band threads
    int32_t scratchBlocks = -1;  ///< picture-sized blocks
    bool lasting = false;

    static constexpr int32_t kExhausted = INT32_MIN;  ///< a supply that has refused and goes on refusing

    /// Takes one from `supply`; false if it is refused. A refusal leaves the supply negative.
    static bool grant(int32_t& supply);
};

/// The process's faults. Only the calling thread reads them.
Faults& faults();

inline bool Faults::grant(int32_t& supply) {
    if (supply == kExhausted) return false;
    if (supply < 0 || supply-- > 0) return true;
    if (faults().lasting) supply = kExhausted;
    return false;
}

}  // namespace krl
