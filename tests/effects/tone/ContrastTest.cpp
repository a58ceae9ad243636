#include <gtest/gtest.h>

#include <vector>

#include "effects/tone/ToneCurves.h"

namespace krl::test {
namespace {

TEST(Contrast, TurnsAround127) {
    const auto flat = curveOf([](ImageEngine& e) { return contrast(e, 0.0f, kRGB); });
    EXPECT_EQ(flat, std::vector<int>(256, 127));
    expectIdentity([](ImageEngine& e) { return contrast(e, 1.0f, kRGB); });
    const auto doubled = curveOf([](ImageEngine& e) { return contrast(e, 2.0f, kRGB); });
    EXPECT_EQ(doubled[127], 127);
    EXPECT_EQ(doubled[100], 73);
    EXPECT_EQ(doubled[128], 129);
    EXPECT_EQ(doubled[60], 0);
    EXPECT_EQ(doubled[200], 255);
    const auto inverted = curveOf([](ImageEngine& e) { return contrast(e, -1.0f, kRGB); });
    EXPECT_EQ(inverted[0], 254);
    EXPECT_EQ(inverted[254], 0);
    EXPECT_EQ(inverted[255], 0);
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return contrast(e, 1.5f, t); });
}

TEST(Contrast, DividesTowardZero) {
    // 1.4 * 1024 is 1433 whole: one step from the middle stays one, either way.
    const auto curve = curveOf([](ImageEngine& e) { return contrast(e, 1.4f, kRGB); });
    EXPECT_EQ(curve[126], 126);
    EXPECT_EQ(curve[128], 128);
    EXPECT_EQ(curve[130], 131);
}

TEST(Contrast, SurvivesFactorsBeyondAllIntegers) {
    for (float factor : {kInfinity, -kInfinity, kNotANumber, 3e38f})
        // The factor becomes the smallest integer; its multiples wrap to 0 or to itself.
        for (int i : {1, 126, 128, 254}) {
            const int odd = (i - 127) % 2 != 0;
            EXPECT_EQ(curveOf([=](ImageEngine& e) { return contrast(e, factor, kRGB); })[size_t(i)],
                      odd ? 0 : 127);
        }
}

}  // namespace
}  // namespace krl::test
