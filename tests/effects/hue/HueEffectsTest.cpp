#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <new>

#include "effects/hue/HueEffects.h"
#include "kernels/colour/HlsLanes.h"
#include "reference/PointReference.h"
#include "support/Colours.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

Picture one(uint8_t blue, uint8_t green, uint8_t red) { return Picture(1, {{blue, green, red, 77}}); }

TEST(HueColourise, TurnsSaturatedColourToItsHueAndKeepsGreys) {
    const auto red = [](ImageEngine& e) { return hueColourise(e, 0, 100); };
    EXPECT_EQ(one(255, 0, 0).after(red), one(0, 0, 255));
    EXPECT_EQ(one(0, 200, 0).after(red), one(0, 0, 200));
    EXPECT_EQ(one(128, 128, 128).after(red), one(128, 128, 128));
}

TEST(HueColourise, LeavesEverythingAtNoDensity) {
    const Picture source = Picture::random(31, 17);
    EXPECT_EQ(source.after([](ImageEngine& e) { return hueColourise(e, 200, 0); }), source);
}

TEST(HueColourise, WritesGreysByLightnessWhereTheHueIsUndefinedToo) {
    // Level 128 has lightness 181, and 181 * 255 / 360 is 128; level 2 has 3, and 3 * 255 / 360 is 2.
    const auto undefined = [](ImageEngine& e) { return hueColourise(e, -1, 100); };
    EXPECT_EQ(one(128, 128, 128).after(undefined), one(128, 128, 128));
    EXPECT_EQ(one(1, 1, 1).after(undefined), one(0, 0, 0));  // lightness 1, and 255 / 360 is 0
}

TEST(HueColourise, FollowsItsStepsForEveryColour) {
    for (auto [hue, density] : {std::pair{0, 100},
                                {360, 100},
                                {210, 60},
                                {-30, 100},
                                {-359, 130},
                                {-1, 100},
                                {400, 250},
                                {77, -40},
                                {1000000007, 100},
                                {-2147483647 - 1, 2147483647}})
        expectEach(
            colourNet(), [=](ImageEngine& e) { return hueColourise(e, hue, density); },
            [=](Pixel p) { return reference::newHue(p, hue, density, false); });
}

TEST(HlsLanes, GivesBytesForEveryHueOfOneTurn) {
    HlsLanes hls = {};
    ColourLanes colours = {};
    const auto isByte = [](int32_t lane) { return lane >= 0 && lane <= 255; };
    for (int32_t lightness = 0; lightness <= 360; ++lightness)
        for (int32_t saturation = 0; saturation <= 360; ++saturation)
            for (int32_t first = -1; first <= 360; first += int32_t(kBlockPixels)) {
                for (int32_t i = 0; i < int32_t(kBlockPixels); ++i) {
                    hls.hue[i] = std::min(first + i, 360);
                    hls.lightness[i] = lightness;
                    hls.saturation[i] = saturation;
                }
                fromHls(hls, colours);
                for (const auto* lanes : {&colours.red, &colours.green, &colours.blue})
                    ASSERT_TRUE(std::all_of(std::begin(*lanes), std::end(*lanes), isByte))
                        << first << ' ' << lightness << ' ' << saturation;
            }
}

TEST(HueShift, ReturnsAfterAFullTurn) {
    const Picture source = one(10, 90, 250);
    EXPECT_EQ(source.after([](ImageEngine& e) { return hueShift(e, 360, 100); }),
              source.after([](ImageEngine& e) { return hueShift(e, 0, 100); }));
}

TEST(HueShift, TurnsPrimariesIntoOneAnother) {
    const auto third = [](ImageEngine& e) { return hueShift(e, 120, 100); };
    EXPECT_EQ(one(0, 0, 255).after(third), one(0, 255, 0));
    EXPECT_EQ(one(0, 255, 0).after(third), one(255, 0, 0));
    EXPECT_EQ(one(255, 0, 0).after(third), one(0, 0, 255));
    EXPECT_EQ(one(9, 9, 9).after(third), one(9, 9, 9));
}

TEST(HueShift, MixesByDensity) {
    EXPECT_EQ(one(0, 0, 255).after([](ImageEngine& e) { return hueShift(e, 120, 50); }), one(0, 127, 127));
}

TEST(HueShift, FollowsItsStepsForEveryColour) {
    for (auto [hue, density] :
         {std::pair{90, 100}, {360, 100}, {359, 33}, {-30, 100}, {-720, 100}, {725, 175}})
        expectEach(
            colourNet(), [=](ImageEngine& e) { return hueShift(e, hue, density); },
            [=](Pixel p) { return reference::newHue(p, hue, density, true); });
}

TEST(LightnessHLS, StaysNearAtOneAndReachesBothEnds) {
    const Picture source = Picture::random(40, 25, 5);
    const Picture same = source.after([](ImageEngine& e) { return lightnessHLS(e, 1.0f); });
    for (size_t i = 0; i < source.pixels().size(); ++i)
        for (size_t channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(same.pixels()[i][channel], source.pixels()[i][channel], 3);
    EXPECT_EQ(one(10, 80, 200).after([](ImageEngine& e) { return lightnessHLS(e, 0.0f); }), one(0, 0, 0));
    EXPECT_EQ(one(10, 80, 200).after([](ImageEngine& e) { return lightnessHLS(e, 9.0f); }),
              one(255, 255, 255));
}

TEST(LightnessHLS, FollowsItsStepsForEveryColour) {
    for (float lightness : {0.0f, 0.3f, 1.0f, 1.25f, 7.0f, -1.0f, 1e9f, kInfinity, -kInfinity, kNotANumber})
        expectEach(
            colourNet(), [=](ImageEngine& e) { return lightnessHLS(e, lightness); },
            [=](Pixel p) { return reference::lightnessHLS(p, lightness); });
}

TEST(LightnessHSV, WhitensWhollyAtTwoAndKeepsAtOne) {
    const Picture source = Picture::random(40, 25, 6);
    EXPECT_EQ(source.after([](ImageEngine& e) { return lightnessHSV(e, 1.0f); }), source);
    const Picture white = source.after([](ImageEngine& e) { return lightnessHSV(e, 2.0f); });
    EXPECT_TRUE(sameColour(white, Picture(40, 25, {255, 255, 255, 0})));
    EXPECT_TRUE(sameAlpha(white, source));
}

TEST(LightnessHSV, DarkensWithoutLosingSaturation) {
    // Value 200 / 255 less one half leaves 72.5 / 255; saturation 0.5 gives half of it.
    EXPECT_EQ(one(100, 100, 200).after([](ImageEngine& e) { return lightnessHSV(e, 0.5f); }),
              one(36, 36, 73));
}

TEST(LightnessHSV, FollowsItsStepsForEveryColour) {
    for (float lightness :
         {0.0f, 0.4f, 0.999f, 1.0f, 1.1f, 1.5f, 2.0f, 3.0f, -5.0f, 1e30f, kInfinity, -kInfinity, kNotANumber})
        expectEach(
            colourNet(), [=](ImageEngine& e) { return lightnessHSV(e, lightness); },
            [=](Pixel p) { return reference::lightnessHSV(p, lightness); });
}

TEST(PosteriseHue, BringsHuesToTheLowerBoundAndTheLastBandAround) {
    const auto quarters = [](ImageEngine& e) { return posteriseHue(e, 4, 0); };
    // Hue 300 lies in the last quarter, which goes to 360, and that is red; hue 120 goes to 90.
    EXPECT_EQ(one(255, 0, 255).after(quarters), one(0, 0, 255));
    EXPECT_EQ(one(0, 255, 0).after(quarters), one(0, 255, 128));
    EXPECT_EQ(one(50, 50, 50).after(quarters), one(50, 50, 50));
}

TEST(PosteriseHue, OnlyTurnsWithoutBands) {
    EXPECT_EQ(one(0, 0, 255).after([](ImageEngine& e) { return posteriseHue(e, 0, 120); }), one(0, 255, 0));
    EXPECT_EQ(one(50, 50, 50).after([](ImageEngine& e) { return posteriseHue(e, 0, 120); }), one(50, 50, 50));
}

TEST(PosteriseHue, HasNoMemoryForANegativeNumberOfBands) {
    const Picture source = Picture::random(20, 20, 8);
    for (int32_t level : {-1, -2147483647 - 1}) {
        const auto effect = [=](ImageEngine& e) { return posteriseHue(e, level, 90); };
        Picture picture = source;
        EXPECT_THROW(picture.apply(effect), std::bad_alloc) << level;
        EXPECT_EQ(picture, source) << level;
        expectStateTests(effect);
    }
}

TEST(PosteriseHue, FollowsItsStepsForEveryColour) {
    const Picture source = Picture::random(61, 43, 9);
    for (int32_t level : {0, 1, 2, 3, 7, 24, 359, 360, 361, 1000})
        for (int32_t rotation : {0, 30, -30, 360, -360, -361, 719, 100000, -2147483647 - 1, 2147483647})
            expectEach(
                source, [=](ImageEngine& e) { return posteriseHue(e, level, rotation); },
                [=](Pixel p) { return reference::posteriseHue(p, level, rotation); });
}

TEST(PosteriseHue, WritesGreysWhereTheRotationMakesTheirHueUndefinedAgain) {
    EXPECT_EQ(one(1, 1, 1).after([](ImageEngine& e) { return posteriseHue(e, 6, -360); }), one(0, 0, 0));
}

TEST(HueEffects, FollowTheirStepsForAllColoursThereAre) {
    for (int red : allReds()) {
        const Picture plane = colourPlane(red);
        expectEach(
            plane, [](ImageEngine& e) { return hueShift(e, 37, 100); },
            [](Pixel p) { return reference::newHue(p, 37, 100, true); });
        expectEach(
            plane, [](ImageEngine& e) { return lightnessHSV(e, 1.1f); },
            [](Pixel p) { return reference::lightnessHSV(p, 1.1f); });
        if (HasFailure()) return;
    }
}

TEST(HueEffects, GiveTheSameBytesForAnyBands) {
    expectSameForAnyBands([](ImageEngine& e) { return hueColourise(e, 40, 80); });
    expectSameForAnyBands([](ImageEngine& e) { return hueShift(e, 40, 80); });
    expectSameForAnyBands([](ImageEngine& e) { return lightnessHLS(e, 1.3f); });
    expectSameForAnyBands([](ImageEngine& e) { return lightnessHSV(e, 1.3f); });
    expectSameForAnyBands([](ImageEngine& e) { return posteriseHue(e, 5, 20); });
    expectSameForAnyBands([](ImageEngine& e) { return posteriseHue(e, 5, 5000); });
}

TEST(HueEffects, TestTheStateFirst) {
    expectStateTests([](ImageEngine& e) { return hueColourise(e, 40, 80); });
    expectStateTests([](ImageEngine& e) { return hueShift(e, 40, 80); });
    expectStateTests([](ImageEngine& e) { return lightnessHLS(e, 1.3f); });
    expectStateTests([](ImageEngine& e) { return lightnessHSV(e, 1.3f); });
    expectStateTests([](ImageEngine& e) { return posteriseHue(e, 5, 20); });
    expectStateTests([](ImageEngine& e) { return posteriseHue(e, 0, 20); });
}

}  // namespace
}  // namespace krl::test
