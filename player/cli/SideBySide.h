#pragma once

#include <cstddef>
#include <functional>

namespace krl::player {

/// What a worker does with the items that it takes; made and used on the worker's own thread.
using Worker = std::function<void(size_t item)>;

/// Works on items 0 to `count` - 1 on `jobs` threads, 0 for one on each processor. Every thread
/// makes one worker. What a worker throws ends the whole and is thrown here.
void workSideBySide(size_t count, unsigned jobs, const std::function<Worker()>& makeWorker);

}  // namespace krl::player
