#pragma once

#include <cstddef>
#include <functional>

namespace krl::player {

/// Processes one item; created and called on its own thread.
using Worker = std::function<void(size_t item)>;

/// Processes items 0 to `count` - 1 on `jobs` threads, 0 for one per processor. Every thread makes one
/// worker. An exception from a worker stops all threads and is rethrown here.
void workSideBySide(size_t count, unsigned jobs, const std::function<Worker()>& makeWorker);

}  // namespace krl::player
