#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

namespace krl {

/// Takes one block of `bytes`, uninitialised. Throws `std::bad_alloc`.
void* takeScratch(size_t bytes);
/// Gives a block back. Where it is allowed, a few large ones stay at hand for the effects that follow.
void giveScratch(void* block) noexcept;
/// Returns the blocks at hand to the system.
void releaseIdleScratch() noexcept;
/// Bytes of the blocks at hand.
size_t idleScratchBytes() noexcept;

/// How many bytes may stay at hand between calls for the sake of its owner. What the whole process
/// keeps is never more than the sum of all allowances, which is nothing at the start.
class ScratchAllowance {
public:
    ScratchAllowance() = default;
    ~ScratchAllowance() { set(0); }
    ScratchAllowance(const ScratchAllowance&) = delete;
    ScratchAllowance& operator=(const ScratchAllowance&) = delete;

    /// Returns to the system what is then too much.
    void set(size_t bytes) noexcept;

private:
    size_t bytes_ = 0;
};

/// A picture-sized working block, uninitialised, owned for the length of one call.
template <class Element>
class Scratch {
    static_assert(std::is_trivially_copyable_v<Element>);

public:
    Scratch() = default;
    /// Throws `std::bad_alloc`, also for a count whose bytes no address reaches.
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
