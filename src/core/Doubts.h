#pragma once

#include <cstdint>

namespace krl {

/// The end of "fast guess, doubt, exact referee": a loop that becomes vectors has guessed `count` results and
/// marked those that its error could have changed. Calls `referee(i)` for each marked one, to decide it by
/// the exact definition. `any` says whether there is one at all.
template <class Doubt, class Referee>
void settleDoubts(bool any, const Doubt* doubts, int32_t count, Referee&& referee) {
    if (!any) return;
    for (int32_t i = 0; i < count; ++i)
        if (doubts[i]) referee(i);
}

}  // namespace krl
