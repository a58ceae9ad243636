#include <gtest/gtest.h>

#include "effects/tone/ToneCurves.h"

namespace krl::test {
namespace {

TEST(SuperContrast, SpreadsItsRangeOverAllLevels) {
    expectIdentity([](ImageEngine& e) { return superContrast(e, 0, 255, kRGB); });
    expectIdentity([](ImageEngine& e) { return superContrast(e, -9, 999, kAlpha); });
    const auto curve = curveOf([](ImageEngine& e) { return superContrast(e, 64, 191, kRGB); });
    EXPECT_EQ(curve[63], 0);
    EXPECT_EQ(curve[64], 0);
    EXPECT_EQ(curve[65], 2);
    EXPECT_EQ(curve[191], 254);
    EXPECT_EQ(curve[192], 255);
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return superContrast(e, 50, 150, t); });
}

TEST(SuperContrast, TestsTheUpperLevelFirst) {
    const auto crossed = curveOf([](ImageEngine& e) { return superContrast(e, 200, 100, kRGB); });
    EXPECT_EQ(crossed[100], 0);
    EXPECT_EQ(crossed[101], 255);
    const auto touching = curveOf([](ImageEngine& e) { return superContrast(e, 50, 49, kRGB); });
    EXPECT_EQ(touching[49], 0);
    EXPECT_EQ(touching[50], 255);
    const auto single = curveOf([](ImageEngine& e) { return superContrast(e, 100, 100, kRGB); });
    EXPECT_EQ(single[100], 0);
    EXPECT_EQ(single[101], 255);
}

}  // namespace
}  // namespace krl::test
