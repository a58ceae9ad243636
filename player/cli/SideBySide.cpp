#include "player/cli/SideBySide.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "core/Faults.h"

namespace krl::player {

void workSideBySide(size_t count, unsigned jobs, const std::function<Worker()>& makeWorker) {
    if (jobs == 0) jobs = std::max(1u, std::thread::hardware_concurrency());
    const size_t threads = std::min<size_t>(jobs, count);
    std::atomic<size_t> next = 0;
    std::mutex guard;
    std::exception_ptr thrown;
    const auto work = [&] {
        try {
            const Worker worker = makeWorker();
            for (size_t item = next++; item < count; item = next++) worker(item);
        } catch (...) {
            const std::lock_guard lock(guard);
            if (!thrown) thrown = std::current_exception();
            next = count;
        }
    };
    {
        std::vector<std::jthread> others;
        // If the system grants no more threads, the existing ones do all the work.
        try {
            for (size_t i = 1; i < threads && Faults::grant(faults().threads); ++i) others.emplace_back(work);
        } catch (const std::system_error&) {
        }
        if (count > 0) work();
    }
    if (thrown) std::rethrow_exception(thrown);
}

}  // namespace krl::player
