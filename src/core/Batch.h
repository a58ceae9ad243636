#pragma once

#include <algorithm>
#include <cstddef>

namespace krl {

/// Pixels that a loop with several steps processes together, so that intermediate results stay in the
/// nearest cache.
inline constexpr size_t kBatchPixels = 256;

/// Calls `work(start, count)` for the batches of a span of `count` pixels; the last may be shorter.
template <size_t BatchPixels = kBatchPixels, class Work>
void forEachBatch(size_t count, Work&& work) {
    for (size_t start = 0; start < count; start += BatchPixels)
        work(start, std::min(BatchPixels, count - start));
}

}  // namespace krl
