#include <gtest/gtest.h>

#include "effects/tone/ToneCurves.h"

namespace krl::test {
namespace {

TEST(Brightness, SaturatesAtWhiteAndKeepsAlpha) {
    const Picture source = Picture::random(9, 7, 2);
    const Picture white = source.after([](ImageEngine& e) { return brightness(e, 300, kRGB); });
    EXPECT_TRUE(sameColour(white, Picture(9, 7, {255, 255, 255, 0})));
    EXPECT_TRUE(sameAlpha(white, source));
}

TEST(Brightness, AddsAndTakesAway) {
    EXPECT_EQ(Picture(1, {{0, 100, 250, 9}}).after([](ImageEngine& e) { return brightness(e, 40, kRGB); }),
              Picture(1, {{40, 140, 255, 9}}));
    EXPECT_EQ(Picture(1, {{0, 100, 250, 9}}).after([](ImageEngine& e) { return brightness(e, -40, kRGB); }),
              Picture(1, {{0, 60, 210, 9}}));
    EXPECT_EQ(Picture(1, {{0, 100, 250, 9}}).after([](ImageEngine& e) { return brightness(e, -4, kAlpha); }),
              Picture(1, {{0, 100, 250, 5}}));
    expectIdentity([](ImageEngine& e) { return brightness(e, 0, kRGB); });
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return brightness(e, 31, t); });
}

TEST(Brightness, WrapsBeyondAllIntegers) {
    const auto curve = curveOf([](ImageEngine& e) { return brightness(e, 2147483647, kRGB); });
    EXPECT_EQ(curve[0], 255);
    EXPECT_EQ(curve[1], 0);
}

/// The effect with the wide path on.
Effect wide(const Effect& effect) {
    return [effect](ImageEngine& e) {
        e.selectInstructionSet(2);
        const Status status = effect(e);
        e.selectInstructionSet(3);
        return status;
    };
}

TEST(BrightnessWide, EqualsThePlainPathForBytes) {
    const Picture source = Picture::random(37, 11, 12);
    for (int32_t by : {0, 1, 40, 254, 255, -1, -77, -255})
        for (ChannelTarget target : {kRGB, kAlpha}) {
            const auto effect = [=](ImageEngine& e) { return brightness(e, by, target); };
            EXPECT_EQ(source.after(wide(effect)), source.after(effect)) << by;
        }
}

TEST(BrightnessWide, CountsTheLowByteOfTheMagnitude) {
    expectIdentity(wide([](ImageEngine& e) { return brightness(e, 256, kRGB); }));
    expectIdentity(wide([](ImageEngine& e) { return brightness(e, -512, kAlpha); }));
    expectIdentity(wide([](ImageEngine& e) { return brightness(e, -2147483647 - 1, kRGB); }));
    const Picture source = Picture::random(8, 8);
    EXPECT_EQ(source.after(wide([](ImageEngine& e) { return brightness(e, 300, kRGB); })),
              source.after([](ImageEngine& e) { return brightness(e, 44, kRGB); }));
    expectSameForAnyBands(wide([](ImageEngine& e) { return brightness(e, 17, kRGB); }));
}

}  // namespace
}  // namespace krl::test
