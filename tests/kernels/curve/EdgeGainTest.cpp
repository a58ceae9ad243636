#include <gtest/gtest.h>

#include <limits>

#include "kernels/curve/EdgeGain.h"

namespace krl::test {

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

}  // namespace

TEST(EdgeGain, InWholeNumbersIsTheRealOneForEveryByteAndEdge) {
    for (float amount : {0.0f, 1.0f, -1.0f, 0.7f, -0.7f, 0.8f, -0.8f, 1.7f, 1 / 3.0f, 0.001f, -2.71828f,
                         100.0f, 0x1p-20f, 12345.678f, -0x1p+20f}) {
        const auto whole = wholeGain(amount);
        ASSERT_TRUE(whole) << amount;
        for (int32_t sharp = 0; sharp < 256; ++sharp)
            for (int32_t edge = -255; edge <= 255; ++edge)
                ASSERT_EQ((*whole)(sharp, edge), RealGain{amount}(sharp, edge))
                    << amount << ' ' << sharp << ' ' << edge;
    }
}

TEST(EdgeGain, InWholeNumbersIsNotOfferedWhereItCouldDiffer) {
    for (float amount : {kNaN, kInfinity, -kInfinity, 1e-30f, -1e-7f, 3e6f}) EXPECT_FALSE(wholeGain(amount));
}

}  // namespace krl::test
