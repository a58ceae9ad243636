#include "core/Scratch.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>
#include <new>
#include <utility>

#include "core/Faults.h"

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace krl {

namespace {

/// What stands before every block, in a cache line of its own.
struct BlockHead {
    size_t capacity;  ///< bytes after the head
};
constexpr size_t kHeadBytes = 64;
constexpr std::align_val_t kAlignment{64};

BlockHead& headOf(void* block) {
    return *reinterpret_cast<BlockHead*>(static_cast<char*>(block) - kHeadBytes);
}

/// Asks for large pages under a block of many: a fresh block is filled once, and a fault for each
/// small page would take as long as the work on it.
void useLargePages([[maybe_unused]] void* block, [[maybe_unused]] size_t bytes) {
#if defined(__linux__)
    constexpr size_t kLargePage = size_t{2} << 20;
    if (bytes < 4 * kLargePage) return;
    const size_t skipped = (kLargePage - reinterpret_cast<uintptr_t>(block) % kLargePage) % kLargePage;
    const size_t whole = (bytes - skipped) / kLargePage * kLargePage;
    madvise(static_cast<char*>(block) + skipped, whole, MADV_HUGEPAGE);
#endif
}

void* allocate(size_t bytes) {
    if (bytes > SIZE_MAX - kHeadBytes) throw std::bad_alloc();
    void* base = ::operator new(bytes + kHeadBytes, kAlignment);
    useLargePages(base, bytes + kHeadBytes);
    void* block = static_cast<char*>(base) + kHeadBytes;
    headOf(block).capacity = bytes;
    return block;
}

void release(void* block) noexcept {
    if (block) ::operator delete(static_cast<char*>(block) - kHeadBytes, kAlignment);
}

/// The few large blocks given back last, for the next effect on a picture of that size: taking a
/// block from the system means clearing it, which would be a third of a fast effect's time.
class IdleBlocks {
public:
    ~IdleBlocks() { releaseAll(); }

    void* take(size_t bytes) noexcept {
        const std::lock_guard lock(mutex_);
        const auto fits = [=](void* block) {
            return block && headOf(block).capacity >= bytes && headOf(block).capacity / 2 <= bytes;
        };
        const auto found = std::find_if(blocks_.begin(), blocks_.end(), fits);
        return found == blocks_.end() ? nullptr : std::exchange(*found, nullptr);
    }

    /// Keeps `block` in the place of the one that came first.
    void keep(void* block) noexcept {
        const std::lock_guard lock(mutex_);
        std::rotate(blocks_.begin(), blocks_.end() - 1, blocks_.end());
        release(std::exchange(blocks_.front(), block));
    }

    void releaseAll() noexcept {
        const std::lock_guard lock(mutex_);
        for (void*& block : blocks_) release(std::exchange(block, nullptr));
    }

private:
    std::mutex mutex_;
    std::array<void*, 3> blocks_{};
};

IdleBlocks& idleBlocks() {
    static IdleBlocks blocks;
    return blocks;
}

/// Small blocks come quickly; and where every use of a given block is watched, none is used again.
bool isWorthKeeping([[maybe_unused]] size_t bytes) {
#if defined(__SANITIZE_ADDRESS__)
    return false;
#else
    return bytes >= size_t{1} << 20;
#endif
}

}  // namespace

Faults& faults() {
    static Faults instance;
    return instance;
}

void* takeScratch(size_t bytes) {
    if (!Faults::grant(faults().scratchBlocks)) throw std::bad_alloc();
    if (isWorthKeeping(bytes))
        if (void* block = idleBlocks().take(bytes)) return block;
    try {
        return allocate(bytes);
    } catch (const std::bad_alloc&) {
        releaseIdleScratch();
        return allocate(bytes);
    }
}

void giveScratch(void* block) noexcept {
    if (!block) return;
    if (isWorthKeeping(headOf(block).capacity)) {
        idleBlocks().keep(block);
    } else {
        release(block);
    }
}

void releaseIdleScratch() noexcept { idleBlocks().releaseAll(); }

}  // namespace krl
