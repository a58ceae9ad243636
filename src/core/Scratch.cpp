#include "core/Scratch.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>
#include <new>
#include <utility>

#include "core/Faults.h"
#include "core/Thread.h"

#if defined(_WIN32)
#include <windows.h>
#elif defined(__linux__)
#include <sys/mman.h>
#endif

namespace krl {

namespace {

/// What stands before every block, in a cache line of its own.
struct BlockHead {
    void* base;       ///< what the system gave
    size_t capacity;  ///< bytes after the head
};
constexpr size_t kHeadBytes = 64;
constexpr size_t kAlignment = 64;

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

#if defined(_WIN32)
void* systemBlock(size_t bytes) {
    void* base = HeapAlloc(GetProcessHeap(), 0, bytes);
    return base ? base : throw std::bad_alloc();
}
void freeSystemBlock(void* base) noexcept { HeapFree(GetProcessHeap(), 0, base); }
#else
void* systemBlock(size_t bytes) { return ::operator new(bytes); }
void freeSystemBlock(void* base) noexcept { ::operator delete(base); }
#endif

void* allocate(size_t bytes) {
    constexpr size_t kBeside = kHeadBytes + kAlignment - 1;
    if (bytes > SIZE_MAX - kBeside) throw std::bad_alloc();
    void* base = systemBlock(bytes + kBeside);
    const uintptr_t place = (reinterpret_cast<uintptr_t>(base) + kBeside) / kAlignment * kAlignment;
    void* block = static_cast<char*>(base) + (place - reinterpret_cast<uintptr_t>(base));
    headOf(block) = {base, bytes};
    useLargePages(base, bytes + kBeside);
    return block;
}

void release(void* block) noexcept {
    if (block) freeSystemBlock(headOf(block).base);
}

/// The few large blocks given back last, for the next effect on a picture of that size: taking a
/// block from the system means clearing it, which would be a third of a fast effect's time.
class IdleBlocks {
public:
    ~IdleBlocks() { shrinkTo(0); }

    void* take(size_t bytes) noexcept {
        const std::lock_guard lock(mutex_);
        // The smallest that fits, so that an effect finds the blocks of its last call, whatever their order.
        void** found = nullptr;
        for (void*& block : blocks_) {
            const bool fits = block && headOf(block).capacity >= bytes && headOf(block).capacity / 2 <= bytes;
            if (fits && (!found || headOf(block).capacity < headOf(*found).capacity)) found = &block;
        }
        if (!found) return nullptr;
        held_ -= headOf(*found).capacity;
        return std::exchange(*found, nullptr);
    }

    /// Keeps `block`, if it is allowed, in the place of those that came first.
    void keep(void* block) noexcept {
        const std::lock_guard lock(mutex_);
        const size_t bytes = headOf(block).capacity;
        if (bytes > allowed_) return release(block);
        shrinkTo(allowed_ - bytes);
        std::rotate(blocks_.begin(), blocks_.end() - 1, blocks_.end());
        drop(blocks_.front());
        blocks_.front() = block;
        held_ += bytes;
    }

    void changeAllowance(size_t from, size_t to) noexcept {
        const std::lock_guard lock(mutex_);
        allowed_ += to - from;
        shrinkTo(allowed_);
    }

    void releaseAll() noexcept {
        const std::lock_guard lock(mutex_);
        shrinkTo(0);
    }

    size_t held() noexcept {
        const std::lock_guard lock(mutex_);
        return held_;
    }

private:
    /// Those that came first go first.
    void shrinkTo(size_t bytes) noexcept {
        for (auto block = blocks_.rbegin(); block != blocks_.rend() && held_ > bytes; ++block) drop(*block);
    }

    void drop(void*& block) noexcept {
        if (block) held_ -= headOf(block).capacity;
        release(std::exchange(block, nullptr));
    }

    Mutex mutex_;
    std::array<void*, 32> blocks_{};  ///< the last given back first
    size_t held_ = 0;
    size_t allowed_ = 0;
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
    } catch (...) {  // std::bad_alloc: threads of WebAssembly cannot ask for a type
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

size_t idleScratchBytes() noexcept { return idleBlocks().held(); }

void ScratchAllowance::set(size_t bytes) noexcept {
    idleBlocks().changeAllowance(bytes_, bytes);
    bytes_ = bytes;
}

}  // namespace krl
