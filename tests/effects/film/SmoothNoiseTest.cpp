#include <gtest/gtest.h>

#include <cmath>

#include "effects/film/SmoothNoise.h"
#include "reference/FilmReference.h"

namespace krl::test {
namespace {

TEST(LatticeNoise, IsAHashOfItsPlace) {
    // n = 1: m = (1 * (15731 + 789221) + 1376312589) with n = 1 ^ (1 << 13) = 8193.
    EXPECT_EQ(latticeNoise(0, 0), static_cast<float>(1.0 - 1376312589 * 9.313225746154785e-10));
    for (int32_t x : {-5, 0, 1, 77, 5000, INT32_MAX})
        for (int32_t y : {-9, 0, 3, 40000, INT32_MIN}) {
            const float value = latticeNoise(x, y);
            EXPECT_EQ(value, reference::noiseHash(x, y));
            EXPECT_LE(std::fabs(value), 1.0f);
        }
}

}  // namespace
}  // namespace krl::test
