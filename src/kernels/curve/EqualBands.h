#pragma once

#include <cstdint>

namespace krl {

/// The numbers from 0 to `top` in `count` bands of equal width, `top / count` in single precision.
class EqualBands {
public:
    /// Throws `std::bad_alloc` for a negative count: as a number of bounds it is more than any memory holds.
    EqualBands(int32_t count, int32_t top);

    /// What `value` becomes: strictly between the two bounds of a band the lower bound, or `top` in the last
    /// of several bands; elsewhere itself.
    int32_t operator()(int32_t value) const;

private:
    /// Where band `index` begins and the one before it ends, truncated.
    int32_t bound(int32_t index) const;

    int32_t count_, top_;
    double width_;
};

}  // namespace krl
