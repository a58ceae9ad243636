#pragma once

#include <cstdint>

namespace krl {

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
