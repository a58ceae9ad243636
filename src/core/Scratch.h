#pragma once

#include <cstddef>
#include <memory>
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
    explicit Scratch(size_t count)
        : block_(static_cast<Element*>(takeScratch(count * sizeof(Element)))), count_(count) {}

    Element* data() const { return block_.get(); }
    size_t size() const { return count_; }
    Element& operator[](size_t i) const { return block_.get()[i]; }
    Element* begin() const { return data(); }
    Element* end() const { return data() + count_; }

private:
    struct Giver {
        void operator()(Element* block) const { giveScratch(block); }
    };
    std::unique_ptr<Element, Giver> block_;
    size_t count_ = 0;
};

}  // namespace krl
