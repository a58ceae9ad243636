#include <gtest/gtest.h>

#include <vector>

#include "effects/tone/ToneCurves.h"

namespace krl::test {
namespace {

TEST(Exposure, IsIdentityAtRest) {
    expectIdentity([](ImageEngine& e) { return exposure(e, 0.0f, 0.0f, 1.0f); });
}

TEST(Exposure, ScalesLight) {
    const auto brighter = curveOf([](ImageEngine& e) { return exposure(e, 1.0f, 0.0f, 1.0f); });
    EXPECT_EQ(brighter[100], 137);  // times exp(0.315)
    EXPECT_EQ(brighter[200], 255);
    const auto darker = curveOf([](ImageEngine& e) { return exposure(e, -1.0f, 0.0f, 1.0f); });
    EXPECT_EQ(darker[100], 72);
    EXPECT_EQ(darker[255], 186);
}

TEST(Exposure, LiftsAndLowersByItsOffset) {
    const auto lifted = curveOf([](ImageEngine& e) { return exposure(e, 0.0f, 0.5f, 1.0f); });
    EXPECT_EQ(lifted[0], 187);  // log10(11) * 180
    EXPECT_EQ(lifted[255], 255);
    const auto lowered = curveOf([](ImageEngine& e) { return exposure(e, 0.0f, -0.5f, 1.0f); });
    EXPECT_EQ(lowered[0], 0);
    EXPECT_EQ(lowered[255], 182);  // 255 * (2 - exp(0.25))
}

TEST(Exposure, BendsOnTheScaleOfBytesAndLimitsItsArguments) {
    EXPECT_EQ(curveOf([](ImageEngine& e) { return exposure(e, 0.0f, 0.0f, 2.0f); })[255], 15);
    EXPECT_EQ(curveOf([](ImageEngine& e) { return exposure(e, 99.0f, 9.0f, 1.0f); }),
              curveOf([](ImageEngine& e) { return exposure(e, 20.0f, 0.5f, 1.0f); }));
    EXPECT_EQ(curveOf([](ImageEngine& e) { return exposure(e, -kInfinity, -9.0f, 0.0f); }),
              curveOf([](ImageEngine& e) { return exposure(e, -20.0f, -0.5f, 0.1f); }));
    EXPECT_EQ(curveOf([](ImageEngine& e) { return exposure(e, kNotANumber, 0.0f, 1.0f); }),
              std::vector<int>(256, 0));
}

}  // namespace
}  // namespace krl::test
