#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

namespace krl {

/// Allocates an uninitialised block of `bytes`. Throws `std::bad_alloc`.
void* takeScratch(size_t bytes);
/// Releases a block. Within the allowances, a few large ones are cached for later effects.
void giveScratch(void* block) noexcept;
/// Returns the cached blocks to the system.
void releaseIdleScratch() noexcept;
/// The size of the cached blocks in bytes.
size_t idleScratchBytes() noexcept;

/// How many bytes its owner allows to be cached between calls. The process never caches more than the sum of
/// all allowances, which is 0 at the start.
class ScratchAllowance {
public:
    ScratchAllowance() = default;
    ~ScratchAllowance() { set(0); }
    ScratchAllowance(const ScratchAllowance&) = delete;
    ScratchAllowance& operator=(const ScratchAllowance&) = delete;

    /// Returns cached blocks beyond the new limit to the system.
    void set(size_t bytes) noexcept;

private:
    size_t bytes_ = 0;
};

/// A picture-sized, uninitialised working block, owned for the duration of one call.
template <class Element>
class Scratch {
    static_assert(std::is_trivially_copyable_v<Element>);

public:
    Scratch() = default;
    /// Throws `std::bad_alloc`, also for a count whose size overflows.
    explicit Scratch(uint64_t count)
        : block_(static_cast<Element*>(takeScratch(bytesOf(count)))), count_(static_cast<size_t>(count)) {}

    Element* data() const { return block_.get(); }
    size_t size() const { return count_; }
    Element& operator[](size_t i) const { return block_.get()[i]; }
    Element* begin() const { return data(); }
    Element* end() const { return data() + count_; }

private:
    static size_t bytesOf(uint64_t count) {
        if (count > PTRDIFF_MAX / sizeof(Element)) throw std::bad_alloc();
        return static_cast<size_t>(count) * sizeof(Element);
    }

    struct Giver {
        void operator()(Element* block) const { giveScratch(block); }
    };
    std::unique_ptr<Element, Giver> block_;
    size_t count_ = 0;
};

}  // namespace krl
