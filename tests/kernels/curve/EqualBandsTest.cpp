#include <gtest/gtest.h>

#include <new>

#include "kernels/curve/EqualBands.h"
#include "reference/PointReference.h"

namespace krl::test {
namespace {

TEST(EqualBands, FindTheBoundThatAWalkThroughAllBandsEndsOn) {
    for (int top : {1, 2, 255, 360})
        for (int count = 0; count <= top + 2; ++count) {
            const auto bounds = reference::bandBounds(count, top);
            const EqualBands bands(count, top);
            for (int value = -1; value <= top; ++value)
                ASSERT_EQ(bands(value), reference::walkBands(value, bounds, top)) << count << " of " << top;
        }
}

TEST(EqualBands, KeepTheirBounds) {
    const EqualBands thirds(3, 255);
    for (int bound : {0, 85, 170, 255}) EXPECT_EQ(thirds(bound), bound);
    EXPECT_EQ(thirds(84), 0);
    EXPECT_EQ(thirds(169), 85);
    EXPECT_EQ(thirds(171), 255);
}

TEST(EqualBands, HaveNoMemoryForANegativeCount) {
    EXPECT_THROW(EqualBands(-1, 255), std::bad_alloc);
    EXPECT_THROW(EqualBands(INT32_MIN, 360), std::bad_alloc);
}

}  // namespace
}  // namespace krl::test
