#include "kernels/curve/EqualBands.h"

#include <new>

#include "core/Numbers.h"

namespace krl {

// From `top` bands on no whole number is strictly between two bounds, so that no band needs to be searched.
EqualBands::EqualBands(int32_t count, int32_t top)
    : count_(count >= top ? 0 : count), top_(top), width_(static_cast<float>(double(top) / count)) {
    if (count < 0) throw std::bad_alloc();
}

int32_t EqualBands::bound(int32_t index) const { return index == count_ ? top_ : truncate(index * width_); }

int32_t EqualBands::operator()(int32_t value) const {
    for (int32_t i = 0; i < count_; ++i) {
        const int32_t low = bound(i), high = bound(i + 1);
        if (low < value && value < high) return high == top_ && low != 0 ? top_ : low;
    }
    return value;
}

}  // namespace krl
