#pragma once

#include <cstdint>

#include "core/Numbers.h"

namespace krl {

/// A number truncated: `rough` where that is as good as the exact one, which is within `error` of it.
template <class Exact>
int32_t truncateRough(double rough, double error, Exact&& exact) {
    const int32_t least = truncate(rough - error);
    return least == truncate(rough + error) ? least : truncate(exact());
}

/// The last step of "fast guess, doubt, exact referee": a vectorised loop has guessed `count` results and
/// marked those that its error could affect. Calls `referee(i)` for each marked one to compute it by the
/// exact definition. `any` says whether any is marked.
template <class Doubt, class Referee>
void settleDoubts(bool any, const Doubt* doubts, int32_t count, Referee&& referee) {
    if (!any) return;
    for (int32_t i = 0; i < count; ++i)
        if (doubts[i]) referee(i);
}

}  // namespace krl
