#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

namespace krl {

/// Takes one block of `bytes`, uninitialised. Throws `std::bad_alloc`.
void* takeScratch(size_t bytes);
/// Gives a block back. A few large ones stay at hand for the effects that follow.
void giveScratch(void* block) noexcept;
/// Returns the blocks at hand to the system; an engine does it when its picture goes.
void releaseIdleScratch() noexcept;

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
