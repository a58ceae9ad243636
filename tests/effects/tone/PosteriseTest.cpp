#include <gtest/gtest.h>

#include <new>

#include "effects/tone/ToneCurves.h"
#include "reference/PointReference.h"

namespace krl::test {
namespace {

TEST(Posterise, DropsInnerBytesToTheirBoundAndTheTopBandToWhite) {
    const auto halves = curveOf([](ImageEngine& e) { return posterise(e, 2, kRGB); });
    EXPECT_EQ(halves[126], 0);
    EXPECT_EQ(halves[127], 127);  // on the bound
    EXPECT_EQ(halves[128], 255);
    const auto quarters = curveOf([](ImageEngine& e) { return posterise(e, 4, kRGB); });
    EXPECT_EQ(quarters[62], 0);
    EXPECT_EQ(quarters[63], 63);
    EXPECT_EQ(quarters[100], 63);
    EXPECT_EQ(quarters[190], 127);
    EXPECT_EQ(quarters[191], 191);
    EXPECT_EQ(quarters[254], 255);
    const auto whole = curveOf([](ImageEngine& e) { return posterise(e, 1, kRGB); });
    EXPECT_EQ(whole[254], 0);
    EXPECT_EQ(whole[255], 255);
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return posterise(e, 5, t); });
}

TEST(Posterise, LeavesEverythingWithoutBands) {
    expectIdentity([](ImageEngine& e) { return posterise(e, 0, kRGB); });
}

TEST(Posterise, HasNoMemoryForANegativeNumberOfBands) {
    const Picture source = Picture::random(9, 9);
    for (int32_t level : {-1, -2147483647 - 1}) {
        const auto effect = [=](ImageEngine& e) { return posterise(e, level, kRGB); };
        Picture picture = source;
        EXPECT_THROW(static_cast<void>(picture.apply(effect)), std::bad_alloc) << level;
        EXPECT_EQ(picture, source) << level;
        expectStateTests(effect);
    }
}

TEST(Posterise, WalksItsBandsAsTheyStandInMemory) {
    for (int level = 1; level <= 1000; ++level) {
        const auto bounds = reference::bandBounds(level, 255);
        const auto curve = curveOf([=](ImageEngine& e) { return posterise(e, level, kRGB); });
        for (int i = 0; i < 256; ++i)
            ASSERT_EQ(curve[size_t(i)], reference::walkBands(i, bounds, 255)) << level << ' ' << i;
    }
}

}  // namespace
}  // namespace krl::test
