#include <gtest/gtest.h>

#include "effects/tone/ToneCurves.h"

namespace krl::test {
namespace {

TEST(Gamma, WorksOnTheScaleOfBytes) {
    expectIdentity([](ImageEngine& e) { return gamma(e, 1.0f, kRGB); });
    const auto root = curveOf([](ImageEngine& e) { return gamma(e, 2.0f, kRGB); });
    EXPECT_EQ(root[255], 15);
    EXPECT_EQ(root[16], 4);
    EXPECT_EQ(root[15], 3);
    const auto square = curveOf([](ImageEngine& e) { return gamma(e, 0.5f, kRGB); });
    EXPECT_EQ(square[15], 225);
    EXPECT_EQ(square[16], 255);
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return gamma(e, 1.2f, t); });
}

TEST(Gamma, TakesZeroNegativeAndNoNumber) {
    const auto infinite = curveOf([](ImageEngine& e) { return gamma(e, 0.0f, kRGB); });
    EXPECT_EQ(infinite[0], 0);
    EXPECT_EQ(infinite[1], 1);
    EXPECT_EQ(infinite[2], 255);
    const auto inverse = curveOf([](ImageEngine& e) { return gamma(e, -1.0f, kRGB); });
    EXPECT_EQ(inverse[0], 255);
    EXPECT_EQ(inverse[1], 1);
    EXPECT_EQ(inverse[2], 0);
    const auto none = curveOf([](ImageEngine& e) { return gamma(e, kNotANumber, kRGB); });
    EXPECT_EQ(none[0], 0);
    EXPECT_EQ(none[1], 1);  // one to any power
    EXPECT_EQ(none[200], 0);
}

}  // namespace
}  // namespace krl::test
