#pragma once

#include <string>
#include <vector>

namespace krl::player {

/// One variant of a chain of calls.
struct SweepVariant {
    std::vector<std::string> calls;
    std::string label;  ///< the arguments that vary: `blur 20, transparency 80`
};

/// The variants of a chain, with the last argument that varies running fastest.
struct Sweep {
    std::vector<SweepVariant> variants;
    /// How many values each argument that varies has.
    std::vector<size_t> counts;
};

/// A chain may not have more variants.
inline constexpr size_t kMostVariants = 400;

/// Reads calls whose arguments can be ranges, `20..200 by 30`, or alternatives, `#normal | #screen`. A range
/// without `by` has five values. Throws `UsageError`.
Sweep readSweep(const std::vector<std::string>& calls);

}  // namespace krl::player
