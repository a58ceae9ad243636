#include <gtest/gtest.h>

#include "effects/colour/BlackBody.h"

namespace krl::test {
namespace {

TEST(BlackBody, ObserverHasThePublishedColumnSums) {
    double x = 0, y = 0, z = 0;
    for (const ObserverRow& row : kObserver) x += row.x, y += row.y, z += row.z;
    EXPECT_NEAR(x, 21.3714, 1e-9);
    EXPECT_NEAR(y, 21.3711, 1e-9);
    EXPECT_NEAR(z, 21.3715, 1e-9);
    EXPECT_EQ(kObserver[35].y, 1.0);  // 555 nm
    EXPECT_EQ(kObserver[80].x, 0.0);
}

TEST(BlackBody, GoesFromRedThroughNeutralToBlue) {
    const LightColour warm = blackBodyColour(2856), neutral = blackBodyColour(4900),
                      cold = blackBodyColour(10000);
    EXPECT_GT(warm.red, warm.green);
    EXPECT_GT(warm.green, warm.blue);
    EXPECT_NEAR(neutral.red, 1.0, 0.03);
    EXPECT_NEAR(neutral.green, 1.0, 0.03);
    EXPECT_NEAR(neutral.blue, 1.0, 0.03);
    EXPECT_GT(cold.blue, cold.green);
    EXPECT_GT(cold.green, cold.red);
}

}  // namespace
}  // namespace krl::test
