#include "memory/CountedMemory.h"

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace krl::test {

namespace {

std::atomic<int64_t> living{0}, bytesLiving{0}, mostBytes{0};
/// Allocations that are still granted; negative means no limit.
std::atomic<int64_t> granted{-1};
std::atomic<bool> limited{false}, allThatFollow{false}, failed{false};

bool grant() {
    if (!limited.load()) return true;
    const int64_t left = granted.fetch_sub(1);
    if (left > 0 || (left < 0 && !allThatFollow.load())) return true;
    failed.store(true);
    return false;
}

int64_t sizeOf(void* block) {
#ifdef _WIN32
    return static_cast<int64_t>(_msize(block));
#else
    return static_cast<int64_t>(malloc_usable_size(block));
#endif
}

void* allocate(size_t bytes, size_t alignment) noexcept {
    if (!grant()) return nullptr;
    const size_t rounded = (bytes + alignment - 1) / alignment * alignment;
    void* block = alignment <= alignof(std::max_align_t)
                      ? std::malloc(bytes ? bytes : 1)
                      : std::aligned_alloc(alignment, rounded ? rounded : alignment);
    if (!block) return nullptr;
    living.fetch_add(1);
    const int64_t size = sizeOf(block), held = bytesLiving.fetch_add(size) + size;
    for (int64_t most = mostBytes.load(); most < held && !mostBytes.compare_exchange_weak(most, held);) {
    }
    return block;
}

void* allocateOrThrow(size_t bytes, size_t alignment) {
    if (void* block = allocate(bytes, alignment)) return block;
    throw std::bad_alloc();
}

void release(void* block) noexcept {
    if (!block) return;
    living.fetch_sub(1);
    bytesLiving.fetch_sub(sizeOf(block));
    std::free(block);
}

}  // namespace

int64_t livingBlocks() { return living.load(); }
int64_t livingBytes() { return bytesLiving.load(); }

PeakOfBytes::PeakOfBytes() : before_(livingBytes()) { mostBytes.store(before_); }

int64_t PeakOfBytes::bytes() const { return mostBytes.load() - before_; }

AllocationFault::AllocationFault(int64_t number, Extent extent) {
    failed.store(false);
    granted.store(number - 1);
    allThatFollow.store(extent == Extent::AllThatFollow);
    limited.store(true);
}

bool AllocationFault::end() {
    limited.store(false);
    return failed.load();
}

}  // namespace krl::test

using krl::test::allocate;
using krl::test::allocateOrThrow;
using krl::test::release;

constexpr size_t kPlain = alignof(std::max_align_t);

void* operator new(size_t bytes) { return allocateOrThrow(bytes, kPlain); }
void* operator new[](size_t bytes) { return allocateOrThrow(bytes, kPlain); }
void* operator new(size_t bytes, const std::nothrow_t&) noexcept { return allocate(bytes, kPlain); }
void* operator new[](size_t bytes, const std::nothrow_t&) noexcept { return allocate(bytes, kPlain); }
void* operator new(size_t bytes, std::align_val_t alignment) {
    return allocateOrThrow(bytes, static_cast<size_t>(alignment));
}
void* operator new[](size_t bytes, std::align_val_t alignment) {
    return allocateOrThrow(bytes, static_cast<size_t>(alignment));
}
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, size_t) noexcept { release(block); }
void operator delete[](void* block, size_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete(void* block, std::align_val_t) noexcept { release(block); }
void operator delete[](void* block, std::align_val_t) noexcept { release(block); }
void operator delete(void* block, size_t, std::align_val_t) noexcept { release(block); }
void operator delete[](void* block, size_t, std::align_val_t) noexcept { release(block); }
