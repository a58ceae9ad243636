#include <gtest/gtest.h>

#include <limits>

#include "krlimage/key.h"
#include "reference/DifferenceKeyReference.h"
#include "support/Picture.h"

namespace krl {
namespace {

using test::Picture;

constexpr KeyColour kColours[] = {KeyColour::Red, KeyColour::Green, KeyColour::Blue};

auto suppress(KeyColour colour, bool extended, int32_t transparency) {
    return [=](ImageEngine& e) { return spillSupression(e, colour, extended, transparency); };
}

Pixel suppressed(Pixel p, KeyColour colour, bool extended, int32_t transparency = 255) {
    return Picture(1, {p}).after(suppress(colour, extended, transparency)).at(0, 0);
}

TEST(SpillSuppression, ThePlainRuleLimitsByOneOtherChannel) {
    EXPECT_EQ(suppressed({50, 200, 90, 7}, KeyColour::Green, false), (Pixel{50, 50, 90, 7}));
    EXPECT_EQ(suppressed({50, 20, 90, 7}, KeyColour::Red, false), (Pixel{50, 20, 50, 7}));
    EXPECT_EQ(suppressed({50, 20, 90, 7}, KeyColour::Blue, false), (Pixel{20, 20, 90, 7}));
    EXPECT_EQ(suppressed({50, 200, 10, 7}, KeyColour::Red, false), (Pixel{50, 200, 10, 7}));
}

TEST(SpillSuppression, TheExtendedRuleLimitsByTheMeanAndMovesOneNeighbour) {
    EXPECT_EQ(suppressed({50, 200, 91, 7}, KeyColour::Green, true), (Pixel{50, 70, 91, 7}));
    EXPECT_EQ(suppressed({91, 200, 50, 7}, KeyColour::Green, true), (Pixel{91, 70, 70, 7}));
    EXPECT_EQ(suppressed({91, 50, 200, 7}, KeyColour::Red, true), (Pixel{91, 70, 70, 7}));
    EXPECT_EQ(suppressed({200, 91, 50, 7}, KeyColour::Blue, true), (Pixel{70, 91, 70, 7}));
}

TEST(SpillSuppression, LeavesAKeyChannelAtOrBelowTheMean) {
    EXPECT_EQ(suppressed({91, 70, 50, 7}, KeyColour::Green, true), (Pixel{91, 70, 50, 7}));
    EXPECT_EQ(suppressed({91, 10, 50, 7}, KeyColour::Green, true), (Pixel{91, 10, 50, 7}));
}

TEST(SpillSuppression, FollowsItsDefinitionAtEveryStrength) {
    const Picture source = Picture::random(43, 31);
    for (const KeyColour colour : kColours)
        for (const bool extended : {false, true})
            for (int32_t strength = 0; strength < 256; ++strength) {
                Picture expected = source;
                for (Pixel& p : expected.pixels())
                    p = test::reference::suppressed(p, colour, extended, strength);
                ASSERT_EQ(source.after(suppress(colour, extended, strength), 2), expected)
                    << int(colour) << ' ' << extended << ' ' << strength;
            }
}

TEST(SpillSuppression, LimitsItsStrength) {
    const Picture source = Picture::random(9, 9);
    EXPECT_EQ(source.after(suppress(KeyColour::Green, true, -1)), source);
    EXPECT_EQ(source.after(suppress(KeyColour::Green, true, std::numeric_limits<int32_t>::min())), source);
    EXPECT_EQ(source.after(suppress(KeyColour::Green, true, std::numeric_limits<int32_t>::max())),
              source.after(suppress(KeyColour::Green, true, 255)));
}

TEST(SpillSuppression, KeepsAlphaAndNeedsAnImage) {
    const auto effect = suppress(KeyColour::Green, true, 200);
    test::expectSameForAnyBands(effect);
    test::expectStateTests(effect);
    EXPECT_TRUE(test::sameAlpha(Picture::random(9, 9).after(effect), Picture::random(9, 9)));
}

}  // namespace
}  // namespace krl
